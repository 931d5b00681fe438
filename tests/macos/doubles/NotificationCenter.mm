// A notification centre that delivers at once and keeps the list of those delivered in the file
// ~/GNUstep/Notifications, a line each: title|subtitle|body|action button|sound|shown in front.
//
// A Mac's delivers at the notification's date, by a process of its own, and calls the delegate from
// the event loop.

#import <Foundation/Foundation.h>

@implementation NSUserNotification
@synthesize title, subtitle, informativeText, soundName, deliveryDate, hasActionButton;
@end

static NSMutableArray* delivered() {
  static NSMutableArray* const list = [[NSMutableArray alloc] init];
  return list;
}

@implementation NSUserNotificationCenter
@synthesize delegate;

+ (NSUserNotificationCenter*)defaultUserNotificationCenter {
  static NSUserNotificationCenter* const center = [[self alloc] init];
  return center;
}

- (void)record {
  NSMutableString* lines = [NSMutableString string];
  for (NSUserNotification* one in delivered()) {
    [lines appendFormat:@"%@|%@|%@|%d|%@|%d\n", [one title], [one subtitle], [one informativeText],
                        [one hasActionButton], [one soundName],
                        [delegate userNotificationCenter:self shouldPresentNotification:one]];
  }
  [lines writeToFile:[NSHomeDirectory() stringByAppendingPathComponent:@"GNUstep/Notifications"]
          atomically:NO];
}

- (void)scheduleNotification:(NSUserNotification*)notification {
  [delivered() addObject:notification];
  [self record];
}

- (void)removeDeliveredNotification:(NSUserNotification*)notification {
  [delivered() removeObjectIdenticalTo:notification];
  [self record];
}

// For tests only: the user clicks what was delivered first.
- (void)clickFirst {
  [delegate userNotificationCenter:self didActivateNotification:[delivered() objectAtIndex:0]];
}

@end
