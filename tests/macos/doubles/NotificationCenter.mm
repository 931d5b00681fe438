// A notification centre that delivers when the run loop turns, as a Mac's does, and keeps the list
// of those delivered in the file ~/GNUstep Notifications, a line each: title|subtitle|body|action
// button|sound|shown in front.

#import <Foundation/Foundation.h>

@implementation StandInUserNotification
@synthesize title, subtitle, informativeText, soundName, deliveryDate, hasActionButton;
@end

static NSMutableArray* delivered() {
  static NSMutableArray* const list = [[NSMutableArray alloc] init];
  return list;
}

@implementation StandInUserNotificationCenter
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
  [lines writeToFile:[NSHomeDirectory() stringByAppendingPathComponent:@"GNUstep Notifications"]
          atomically:NO];
}

- (void)deliver:(NSUserNotification*)notification {
  [delivered() addObject:notification];
  [self record];
  [delegate userNotificationCenter:self didDeliverNotification:notification];
}

- (void)scheduleNotification:(NSUserNotification*)notification {
  [self performSelector:@selector(deliver:) withObject:notification afterDelay:0];
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
