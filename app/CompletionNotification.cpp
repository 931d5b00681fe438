// The one message to the user at the end of a run, and what the centre asks about it.

#include <chrono>
#include <string>

#include "app/WorkerAppDelegate.h"

namespace tasselby {

void WorkerAppDelegate::displayNotificationWithTitle_andText(const std::string& title,
                                                             const std::string& text) {
  // Deliberate: `clearData` has asked the preference too. Nothing is posted without it, whoever
  // calls. A version that is no number counts as too old.
  const bool wanted = platform_.userDefaults.boolForKey("displayNotifications");
  if (!(platform_.coreFoundationVersionNumber >= kFirstVersionWithNotifications) || !wanted) {
    return;
  }
  UserNotification notification;
  notification.title = title;
  // Deliberate: the whole report stands in the subtitle, and the body stays empty.
  notification.subtitle = text;
  notification.hasActionButton = false;
  notification.deliveryDate = std::chrono::system_clock::now();
  platform_.notificationCenter.scheduleNotification(notification);
}

void WorkerAppDelegate::userNotificationCenter_didActivateNotification(
    UserNotificationCenter& center, const UserNotification& notification) {
  center.removeDeliveredNotification(notification);
}

bool WorkerAppDelegate::userNotificationCenter_shouldPresentNotification(
    UserNotificationCenter& /*center*/, const UserNotification& /*notification*/) {
  return true;
}

}  // namespace tasselby
