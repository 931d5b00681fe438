#pragma once

// Stands in for GNUstep's header of that name: what the worker uses of it, no more. GNUstep's
// library lacks the classes, or has ones that show nothing without a desktop, and so these have
// names of their own.

#import <Foundation/NSObject.h>

#define DEPRECATED_ON_A_MAC \
  __attribute__((availability(macos, introduced = 10.8, deprecated = 11.0)))

@class NSArray, StandInUserNotification, StandInUserNotificationCenter;
@compatibility_alias NSUserNotification StandInUserNotification;
@compatibility_alias NSUserNotificationCenter StandInUserNotificationCenter;

DEPRECATED_ON_A_MAC @interface StandInUserNotification : NSObject {
  id title, subtitle, informativeText, soundName, deliveryDate;
  BOOL hasActionButton;
}
@property(nonatomic, copy) id title, subtitle, informativeText, soundName, deliveryDate;
@property(nonatomic) BOOL hasActionButton;
@end

@protocol NSUserNotificationCenterDelegate
- (void)userNotificationCenter:(NSUserNotificationCenter*)center
        didDeliverNotification:(NSUserNotification*)notification;
- (void)userNotificationCenter:(NSUserNotificationCenter*)center
       didActivateNotification:(NSUserNotification*)notification;
- (BOOL)userNotificationCenter:(NSUserNotificationCenter*)center
     shouldPresentNotification:(NSUserNotification*)notification;
@end

DEPRECATED_ON_A_MAC @interface StandInUserNotificationCenter : NSObject {
  id<NSUserNotificationCenterDelegate> delegate;
  NSArray* deliveredNotifications;
}
@property(nonatomic, assign) id<NSUserNotificationCenterDelegate> delegate;
@property(nonatomic, copy) NSArray* deliveredNotifications;
+ (NSUserNotificationCenter*)defaultUserNotificationCenter;
- (void)scheduleNotification:(NSUserNotification*)notification;
- (void)removeDeliveredNotification:(NSUserNotification*)notification;
@end
