#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace tasselby {

/// The platform over a Mac home folder as plain files, for any POSIX system.

/// Preferences from the argument domain in `arguments` (`-key value`), then the worker's own plist
/// and those of the added suites in `~/Library/Preferences`. Files are read at the first
/// `boolForKey`, once, and never written. `files` must outlive the answer.
std::unique_ptr<UserDefaults> makeOfflineUserDefaults(const std::vector<std::string>& arguments,
                                                      const FileManager& files);

/// The internet passwords of `~/Library/Keychains/login.keychain-db`, else `login.keychain`.
/// Never writes, never reads a secret. `files` must outlive the answer.
std::unique_ptr<Keychain> makeOfflineKeychain(const FileManager& files);

/// The notification service of the desktop on the session bus. Without a bus or a service, and
/// in a build without sd-bus, nothing happens; nothing waits longer than a second.
std::unique_ptr<UserNotificationCenter> makeDesktopNotifications();

/// `$HOME` as an absolute path; empty when it is empty or not set.
std::string homeFolder();

/// Runs the application over the home folder `$HOME`: makes the delegate, wakes it and launches
/// it. Answers the exit status of a run that did not terminate by itself: `kHardErrorStatus` after
/// a `HardError` or any other exception, else 0.
int offlineApplicationMain(int argc, char** argv, DelegateFactory makeDelegate);

}  // namespace tasselby
