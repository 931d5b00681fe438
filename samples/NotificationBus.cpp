// A bus with one service and one client at a time: a socket whose other end is talked to by sd-bus.

#include "samples/NotificationBus.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>

namespace tasselby {
namespace {

constexpr const char* kServiceName = "org.freedesktop.Notifications";
constexpr const char* kObjectPath = "/org/freedesktop/Notifications";

/// Reads the call Notify(application, replaces, icon, summary, body, actions, hints, expiry), which
/// has no action and one hint that is a boolean.
bool read(sd_bus_message* call, ReceivedNotification& received) {
  const char* application = "";
  const char* summary = "";
  const char* body = "";
  const char* hint = "";
  int isSet = 0;
  const char* destination = sd_bus_message_get_destination(call);
  const bool isWhole = sd_bus_message_read(call, "susssasa{sv}i", &application, nullptr, nullptr,
                                           &summary, &body, 0, 1, &hint, "b", &isSet, nullptr) > 0;
  received = {application, summary, body, hint == std::string("suppress-sound") && isSet != 0};
  return isWhole && destination != nullptr && destination == std::string(kServiceName) &&
         sd_bus_message_get_path(call) == std::string(kObjectPath);
}

}  // namespace

struct NotificationBus::Service {
  Service() {
    // Without a name the system makes one, which is no file's.
    sockaddr_un name{.sun_family = AF_UNIX, .sun_path = ""};
    auto* const plain = reinterpret_cast<sockaddr*>(&name);
    socklen_t size = sizeof name;
    if (::bind(listener, plain, sizeof name.sun_family) == 0 &&
        ::getsockname(listener, plain, &size) == 0 && ::listen(listener, 1) == 0) {
      address.append(name.sun_path + 1, size - offsetof(sockaddr_un, sun_path) - 1);
    }
    thread = std::thread([this] {
      for (int client = 0; (client = ::accept(listener, nullptr, nullptr)) >= 0;) {
        serve(client);
      }
    });
  }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;
  ~Service() {
    ::shutdown(listener, SHUT_RDWR);
    thread.join();
    ::close(listener);
  }

  /// Answers the client's calls until it goes.
  void serve(int client) {
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_fd(bus, client, client);
    sd_bus_set_server(bus, 1, {});
    sd_bus_set_anonymous(bus, 1);
    for (int processed = sd_bus_start(bus); processed >= 0;) {
      sd_bus_message* message = nullptr;
      processed = sd_bus_process(bus, &message);
      if (processed == 0) {
        sd_bus_wait(bus, UINT64_MAX);
      }
      ReceivedNotification notification;
      if (sd_bus_message_is_method_call(message, "org.freedesktop.DBus", "Hello") > 0) {
        sd_bus_reply_method_return(message, "s", ":1.1");
      } else if (sd_bus_message_is_method_call(message, kServiceName, "Notify") > 0 &&
                 read(message, notification)) {
        const std::lock_guard<std::mutex> lock(mutex);
        received.push_back(notification);
        sd_bus_reply_method_return(message, "u", 1);
      }
      sd_bus_message_unref(message);
    }
    sd_bus_close_unref(bus);
  }

  int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::string address = "unix:abstract=";
  std::mutex mutex;
  std::vector<ReceivedNotification> received;
  std::thread thread;
};

NotificationBus::NotificationBus() : service_(std::make_unique<Service>()) {}

NotificationBus::~NotificationBus() = default;

const std::string& NotificationBus::address() const {
  return service_->address;
}

std::vector<ReceivedNotification> NotificationBus::received() const {
  const std::lock_guard<std::mutex> lock(service_->mutex);
  return service_->received;
}

}  // namespace tasselby
