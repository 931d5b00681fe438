#pragma once

// What all tests use.

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

#include "app/WorkerAppDelegate.h"
#include "platform/SafariCookies.h"
#include "platform/offline/OfflinePlatform.h"
#include "samples/MacHome.h"
#include "samples/PlainSqlite.h"
#include "samples/RunWorker.h"
#include "samples/SampleStores.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace fs = std::filesystem;

inline const std::string kSupport = "Library/Application Support/";

/// All of a platform that has no file. It keeps what it is told, and its texts are their keys; it
/// goes on where a real application would end the process.
struct Recorder final : Application, UserDefaults, Bundle, UserNotificationCenter {
  std::vector<std::string> arguments() const override { return given; }
  void terminate() override { ++terminations; }
  void addSuiteNamed(const std::string& suite) override { suites.push_back(suite); }
  bool boolForKey(const std::string& key) const override { return on.contains(key); }
  std::string localizedString(const std::string& key, const std::string&) const override {
    return key;
  }
  void setDelegate(UserNotificationCenterDelegate* to) override { delegate = to; }
  void scheduleNotification(const UserNotification& one) override { scheduled.push_back(one); }
  void removeDeliveredNotification(const UserNotification& one) override {
    removed.push_back(one.identifier);
  }

  Names given, suites;
  std::vector<std::uint64_t> removed;
  int terminations = 0;
  std::set<std::string> on;
  UserNotificationCenterDelegate* delegate = nullptr;
  std::vector<UserNotification> scheduled;
};

/// A worker over a home folder of plain files.
class WorkerTest : public ::testing::Test {
 protected:
  ScratchHome home;
  Recorder recorder;
  FileManager files{home.home()};
  std::unique_ptr<Keychain> keychain = makeOfflineKeychain(files);
  std::unique_ptr<HTTPCookieStorage> cookieStorage = makeSafariCookies(files);
  Platform platform{recorder, recorder, recorder, *keychain, *cookieStorage, recorder, files, 744};
  WorkerAppDelegate worker{platform};
};

}  // namespace tasselby
