#pragma once

// Stands in for GNUstep's header of that name, which declares classes that its library lacks where
// the compiler was GCC. What the worker uses of them, no more.

#import <Foundation/NSObject.h>

@class NSDate, NSString, NSUserNotificationCenter;

@interface NSUserNotification : NSObject {
  NSString *title, *subtitle, *informativeText, *soundName;
  NSDate* deliveryDate;
  BOOL hasActionButton;
}
@property(nonatomic, copy) NSString *title, *subtitle, *informativeText, *soundName;
@property(nonatomic, copy) NSDate* deliveryDate;
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

@interface NSUserNotificationCenter : NSObject {
  id<NSUserNotificationCenterDelegate> delegate;
}
@property(nonatomic, assign) id<NSUserNotificationCenterDelegate> delegate;
+ (NSUserNotificationCenter*)defaultUserNotificationCenter;
- (void)scheduleNotification:(NSUserNotification*)notification;
- (void)removeDeliveredNotification:(NSUserNotification*)notification;
@end
