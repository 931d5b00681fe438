#include "samples/NotificationBus.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>

#include "samples/TemporaryFolder.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

constexpr const char* kServiceName = "org.freedesktop.Notifications";
constexpr std::uint64_t kPollMicroseconds = 20000;

/// Starts the bus described in `folder` and waits until it takes connections.
pid_t startDaemon(const fs::path& folder, const std::string& address) {
  std::ofstream(folder / "bus.conf")
      << "<busconfig><type>session</type><listen>" << address << "</listen>"
      << "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
      << "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>";
  std::array<int, 2> ready{};
  if (::pipe(ready.data()) != 0) {
    return 0;
  }
  std::string program = "dbus-daemon";
  std::string configuration = "--config-file=" + (folder / "bus.conf").native();
  std::string print = "--print-address=" + std::to_string(ready[1]);
  const std::array<char*, 4> arguments = {program.data(), configuration.data(), print.data(),
                                          nullptr};
  // What the daemon has to say of its limits is of no use here.
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t daemon = 0;
  const int error =
      ::posix_spawnp(&daemon, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(ready[1]);
  char byte = 0;
  if (error == 0 && ::read(ready[0], &byte, 1) != 1) {
    ::kill(daemon, SIGKILL);
    ::waitpid(daemon, nullptr, 0);
    daemon = 0;
  }
  ::close(ready[0]);
  return error == 0 ? daemon : 0;
}

/// Reads the call Notify(application, replaces, icon, summary, body, actions, hints, expiry).
ReceivedNotification notificationIn(sd_bus_message* call) {
  const char* application = "";
  const char* summary = "";
  const char* body = "";
  const char* text = nullptr;
  ReceivedNotification received;
  sd_bus_message_read(call, "susss", &application, nullptr, nullptr, &summary, &body);
  received = {application, summary, body, {}, false};
  sd_bus_message_enter_container(call, 'a', "s");
  while (sd_bus_message_read_basic(call, 's', static_cast<void*>(&text)) > 0) {
    received.actions.emplace_back(text);
  }
  sd_bus_message_exit_container(call);
  sd_bus_message_enter_container(call, 'a', "{sv}");
  while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
    int isSet = 0;
    sd_bus_message_read_basic(call, 's', static_cast<void*>(&text));
    if (std::string(text) == "suppress-sound" && sd_bus_message_read(call, "v", "b", &isSet) > 0) {
      received.isSilent = isSet != 0;
    } else {
      sd_bus_message_skip(call, "v");
    }
    sd_bus_message_exit_container(call);
  }
  return received;
}

}  // namespace

class NotificationBus::Service {
 public:
  Service() : daemon_(startDaemon(folder_.path(), address_)), thread_([this] { serve(); }) {
    while (!isServing_) {
      std::this_thread::yield();
    }
  }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;
  ~Service() {
    isEnding_ = true;
    thread_.join();
    if (daemon_ > 0) {
      ::kill(daemon_, SIGTERM);
      ::waitpid(daemon_, nullptr, 0);
    }
  }

  const std::string& address() const { return address_; }

  std::vector<ReceivedNotification> received() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return received_;
  }

 private:
  void serve() {
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, address_.c_str());
    sd_bus_set_bus_client(bus, 1);
    const bool hasName = sd_bus_start(bus) >= 0 && sd_bus_request_name(bus, kServiceName, 0) >= 0;
    isServing_ = true;
    while (hasName && !isEnding_) {
      sd_bus_message* message = nullptr;
      if (sd_bus_process(bus, &message) == 0) {
        sd_bus_wait(bus, kPollMicroseconds);
      }
      if (message != nullptr &&
          sd_bus_message_is_method_call(message, kServiceName, "Notify") > 0) {
        const std::lock_guard<std::mutex> lock(mutex_);
        received_.push_back(notificationIn(message));
        sd_bus_reply_method_return(message, "u", 1);
      }
      sd_bus_message_unref(message);
    }
    sd_bus_flush_close_unref(bus);
  }

  TemporaryFolder folder_;
  std::string address_ = "unix:path=" + (folder_.path() / "bus").native();
  pid_t daemon_;
  std::mutex mutex_;
  std::vector<ReceivedNotification> received_;
  std::atomic<bool> isServing_ = false;
  std::atomic<bool> isEnding_ = false;
  // The last to be made: it uses the others.
  std::thread thread_;
};

NotificationBus::NotificationBus() : service_(std::make_unique<Service>()) {}

NotificationBus::~NotificationBus() = default;

std::string NotificationBus::address() const {
  return service_->address();
}

std::vector<ReceivedNotification> NotificationBus::received() const {
  return service_->received();
}

}  // namespace tasselby
