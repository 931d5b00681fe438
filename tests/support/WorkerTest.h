#pragma once

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "app/WorkerAppDelegate.h"
#include "platform/SafariCookies.h"
#include "platform/offline/OfflinePlatform.h"
#include "samples/ScratchHome.h"

namespace tasselby {

/// What the recording application throws where a real one would end the process.
struct Terminated {};

/// An application whose arguments are `given`, and which ends unless told to go on.
class RecordingApplication final : public Application {
 public:
  std::vector<std::string> arguments() const override { return given; }
  void terminate() override {
    ++terminations;
    if (!goesOn) {
      throw Terminated();
    }
  }

  std::vector<std::string> given;
  int terminations = 0;
  bool goesOn = false;
};

/// Preferences that are true for the names in `on`.
class SetDefaults final : public UserDefaults {
 public:
  void addSuiteNamed(const std::string& suite) override { suites.push_back(suite); }
  bool boolForKey(const std::string& key) const override { return on.contains(key); }

  std::vector<std::string> suites;
  std::set<std::string> on;
};

/// Every text is its key.
class KeyBundle final : public Bundle {
 public:
  std::string localizedString(const std::string& key, const std::string&) const override {
    return key;
  }
};

/// Keeps what it is told.
class RecordingCenter final : public UserNotificationCenter {
 public:
  void setDelegate(UserNotificationCenterDelegate* to) override { delegate = to; }
  void scheduleNotification(const UserNotification& notification) override {
    scheduled.push_back(notification);
  }
  void removeDeliveredNotification(const UserNotification& notification) override {
    removed.push_back(notification.identifier);
  }

  UserNotificationCenterDelegate* delegate = nullptr;
  std::vector<UserNotification> scheduled;
  std::vector<std::string> removed;
};

/// A worker over a home folder of plain files. What has no file records instead.
class WorkerTest : public ::testing::Test {
 protected:
  ScratchHome home;
  RecordingApplication application;
  SetDefaults defaults;
  KeyBundle bundle;
  RecordingCenter center;
  FileManager files{home.home()};
  std::unique_ptr<Keychain> keychain = makeOfflineKeychain(files);
  std::unique_ptr<HTTPCookieStorage> cookieStorage = makeSafariCookies(files);
  Platform platform{application, defaults, bundle, *keychain, *cookieStorage, center, files, 744.0};
  WorkerAppDelegate worker{platform};
};

}  // namespace tasselby
