// A notification centre that delivers when the run loop turns, as a Mac's does, and keeps the list
// of those delivered in the file ~/GNUstep Notifications, a line each: title|subtitle|body|action
// button|sound|shown in front.

#import <Foundation/Foundation.h>

@implementation StandInUserNotification
@synthesize title, subtitle, informativeText, soundName, deliveryDate, hasActionButton;
@end

@implementation StandInUserNotificationCenter
@synthesize delegate, deliveredNotifications;

+ (NSUserNotificationCenter*)defaultUserNotificationCenter {
  static NSUserNotificationCenter* const center = [[self alloc] init];
  return center;
}

- (void)deliver:(NSArray*)notifications {
  [self setDeliveredNotifications:notifications];
  NSMutableString* lines = [NSMutableString string];
  for (NSUserNotification* one in notifications) {
    [lines appendFormat:@"%@|%@|%@|%d|%@|%d\n", [one title], [one subtitle], [one informativeText],
                        [one hasActionButton], [one soundName],
                        [delegate userNotificationCenter:self shouldPresentNotification:one]];
  }
  [lines writeToFile:[NSHomeDirectory() stringByAppendingPathComponent:@"GNUstep Notifications"]
          atomically:NO];
  [delegate userNotificationCenter:self didDeliverNotification:[notifications lastObject]];
}

- (void)scheduleNotification:(NSUserNotification*)notification {
  NSMutableArray* all = [NSMutableArray arrayWithArray:deliveredNotifications];
  [all addObject:notification];
  [self performSelector:@selector(deliver:) withObject:all afterDelay:0];
}

- (void)removeDeliveredNotification:(NSUserNotification*)notification {
  NSMutableArray* left = [NSMutableArray arrayWithArray:deliveredNotifications];
  [left removeObjectIdenticalTo:notification];
  [self deliver:left];
}

@end
