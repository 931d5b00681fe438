// The user notification centre. Its classes are deprecated since macOS 11 and still there; what
// replaces them asks the user's leave first, and a process that ends at once cannot wait for that.

#import <Foundation/Foundation.h>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

/// The centre's delegate, which hands its questions on to the one in C++.
@interface TasselbyNotificationForwarder : NSObject <NSUserNotificationCenterDelegate> {
 @public
  tasselby::UserNotificationCenter* owner;
  tasselby::UserNotificationCenterDelegate* target;
  // What was handed on so far; a notification's identifier is its place here, counted from 1. The
  // system's own identifiers are none before somebody sets them.
  NSMutableArray* handedOn;
  // How many notifications the centre has delivered.
  NSUInteger delivered;
}
@end

@implementation TasselbyNotificationForwarder

- (void)dealloc {
  [handedOn release];
  [super dealloc];
}

- (tasselby::UserNotification)handOn:(NSUserNotification*)notification {
  if (handedOn == nil) {
    handedOn = [[NSMutableArray alloc] init];
  }
  tasselby::UserNotification copy;
  copy.title = tasselby::utf8([notification title]);
  copy.subtitle = tasselby::utf8([notification subtitle]);
  copy.informativeText = tasselby::utf8([notification informativeText]);
  [handedOn addObject:notification];
  copy.identifier = [handedOn count];
  return copy;
}

- (void)userNotificationCenter:(NSUserNotificationCenter*)center
        didDeliverNotification:(NSUserNotification*)notification {
  static_cast<void>(center);
  static_cast<void>(notification);
  ++delivered;
}

- (void)userNotificationCenter:(NSUserNotificationCenter*)center
       didActivateNotification:(NSUserNotification*)notification {
  static_cast<void>(center);
  @autoreleasepool {
    tasselby::endingOnError([self, notification] {
      target->userNotificationCenter_didActivateNotification(*owner, [self handOn:notification]);
    });
  }
}

- (BOOL)userNotificationCenter:(NSUserNotificationCenter*)center
     shouldPresentNotification:(NSUserNotification*)notification {
  static_cast<void>(center);
  BOOL answer = NO;
  @autoreleasepool {
    tasselby::endingOnError([self, notification, &answer] {
      answer = target->userNotificationCenter_shouldPresentNotification(*owner,
                                                                        [self handOn:notification])
                   ? YES
                   : NO;
    });
  }
  return answer;
}

@end

namespace tasselby {
namespace {

NSUserNotification* systemNotification(const UserNotification& notification) {
  NSUserNotification* object = [[[NSUserNotification alloc] init] autorelease];
  [object setTitle:nsString(notification.title)];
  [object setSubtitle:nsString(notification.subtitle)];
  if (!notification.informativeText.empty()) {
    [object setInformativeText:nsString(notification.informativeText)];
  }
  [object setHasActionButton:notification.hasActionButton ? YES : NO];
  [object setSoundName:notification.soundName ? nsString(*notification.soundName) : nil];
  const std::chrono::duration<double> date = notification.deliveryDate.time_since_epoch();
  [object setDeliveryDate:[NSDate dateWithTimeIntervalSince1970:date.count()]];
  return object;
}

// A centre that does not say that it delivered is not waited for any longer.
constexpr NSTimeInterval kLongestDelivery = 1;
// A timer does not end a turn of the run loop before its time is up.
constexpr NSTimeInterval kTurn = 0.01;

class MacNotificationCenter final : public UserNotificationCenter {
 public:
  MacNotificationCenter() { forwarder()->owner = this; }
  MacNotificationCenter(const MacNotificationCenter&) = delete;
  MacNotificationCenter& operator=(const MacNotificationCenter&) = delete;
  ~MacNotificationCenter() override {
    if (forwarder()->target != nullptr) {
      setDelegate(nullptr);
    }
  }

  void setDelegate(UserNotificationCenterDelegate* delegate) override {
    @autoreleasepool {
      forwarder()->target = delegate;
      [[NSUserNotificationCenter defaultUserNotificationCenter]
          setDelegate:delegate != nullptr ? forwarder() : nil];
    }
  }

  void scheduleNotification(const UserNotification& notification) override {
    @autoreleasepool {
      [[NSUserNotificationCenter defaultUserNotificationCenter]
          scheduleNotification:systemNotification(notification)];
      waitForDelivery();
    }
  }

  void removeDeliveredNotification(const UserNotification& notification) override {
    @autoreleasepool {
      NSArray* handedOn = forwarder()->handedOn;
      if (notification.identifier != 0 && notification.identifier <= [handedOn count]) {
        [[NSUserNotificationCenter defaultUserNotificationCenter]
            removeDeliveredNotification:[handedOn objectAtIndex:notification.identifier - 1]];
      }
    }
  }

 private:
  /// Turns the run loop until the centre says that it delivered: scheduling is a message to another
  /// process, and lost if this one ends before it went.
  void waitForDelivery() const {
    const NSUInteger before = forwarder()->delivered;
    NSRunLoop* const loop = [NSRunLoop currentRunLoop];
    NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:kLongestDelivery];
    while (forwarder()->delivered == before && [end timeIntervalSinceNow] > 0 &&
           [loop runMode:NSDefaultRunLoopMode
               beforeDate:[NSDate dateWithTimeIntervalSinceNow:kTurn]]) {
    }
  }

  TasselbyNotificationForwarder* forwarder() const { return forwarder_.get(); }

  // Owned here: the centre does not keep its delegate alive.
  Retained forwarder_{[[TasselbyNotificationForwarder alloc] init]};
};

}  // namespace

std::unique_ptr<UserNotificationCenter> makeMacNotificationCenter() {
  return std::make_unique<MacNotificationCenter>();
}

}  // namespace tasselby

#pragma clang diagnostic pop
