#pragma once

#include <memory>

#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/HTTPCookieStorage.h"
#include "platform/Keychain.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"

namespace tasselby {

/// Everything the operating system gives the worker, by reference: a copy names the same things.
struct Platform {
  Application& application;
  UserDefaults& userDefaults;
  Bundle& bundle;
  Keychain& keychain;
  HTTPCookieStorage& cookieStorage;
  UserNotificationCenter& notificationCenter;
  const FileManager& files;
  /// The running CoreFoundation's version, which tells the release of the system; NaN if unknown.
  double coreFoundationVersionNumber;
};

/// Makes the application's delegate over `platform`, which outlives it.
using DelegateFactory = std::unique_ptr<ApplicationDelegate> (*)(const Platform& platform);

}  // namespace tasselby
