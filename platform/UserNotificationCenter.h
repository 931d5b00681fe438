#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tasselby {

/// One message to the user.
struct UserNotification {
  /// Tells a notification that the centre handed back; 0 in one that it did not.
  std::uint64_t identifier = 0;
  /// Three texts, one below the other; an empty one takes no line.
  std::string title;
  std::string subtitle;
  std::string informativeText;
  /// Whether there is a button beside the texts.
  bool hasActionButton = true;
  /// No value: silent.
  std::optional<std::string> soundName;
  /// When it is to be shown.
  std::chrono::system_clock::time_point deliveryDate;
};

class UserNotificationCenter;

/// What the centre asks about the notifications of this process.
class UserNotificationCenterDelegate {
 public:
  virtual ~UserNotificationCenterDelegate() = default;

  /// The user clicked `notification`.
  virtual void userNotificationCenter_didActivateNotification(
      UserNotificationCenter& center, const UserNotification& notification) = 0;

  /// Whether to show `notification` although this process is the active application.
  virtual bool userNotificationCenter_shouldPresentNotification(
      UserNotificationCenter& center, const UserNotification& notification) = 0;
};

/// The system's notification service. Failures are silent, and nothing here waits for the user.
class UserNotificationCenter {
 public:
  virtual ~UserNotificationCenter() = default;

  /// Whom to ask from now on; not owned.
  virtual void setDelegate(UserNotificationCenterDelegate* delegate) = 0;

  /// Posts `notification` for delivery at its date. Waits until the service has it, so that this
  /// process may end, and for a second at most.
  virtual void scheduleNotification(const UserNotification& notification) = 0;

  /// Takes `notification` off the list of those the user has been shown.
  virtual void removeDeliveredNotification(const UserNotification& notification) = 0;
};

}  // namespace tasselby
