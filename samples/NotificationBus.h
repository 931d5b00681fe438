#pragma once

#include <memory>
#include <string>
#include <vector>

namespace tasselby {

/// A notification as a desktop's service receives it.
struct ReceivedNotification {
  std::string application;
  std::string summary;
  std::string body;
  /// Whether the service was asked to make no sound.
  bool isSilent = false;
};

/// A session bus of its own with a notification service on it, while this object lives. Where the
/// system has no such bus, nothing is ever received.
class NotificationBus {
 public:
  NotificationBus();
  NotificationBus(const NotificationBus&) = delete;
  NotificationBus& operator=(const NotificationBus&) = delete;
  ~NotificationBus();

  /// What a client needs in DBUS_SESSION_BUS_ADDRESS.
  const std::string& address() const;

  /// What has come in so far: calls with no action and one hint, by clients that have gone.
  std::vector<ReceivedNotification> received() const;

 private:
  struct Service;
  std::unique_ptr<Service> service_;
};

}  // namespace tasselby
