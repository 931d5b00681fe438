#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Platform.h"

namespace tasselby {

/// The platform over a Mac's system frameworks. No type of theirs shows here.

/// This process's arguments, and the shared application's end.
std::unique_ptr<Application> makeMacApplication();

/// The user's standard defaults.
std::unique_ptr<UserDefaults> makeMacUserDefaults();

/// The main bundle's localized text.
std::unique_ptr<Bundle> makeMacBundle();

/// The user's keychains. Asks for attributes at most, whatever the query: never for a password or
/// for a reference to an item. May wait for the user to allow the access.
std::unique_ptr<Keychain> makeMacKeychain();

/// The cookie storage that the system gives this process as the shared one, and behind its cookies
/// those of Safari's own files, which are rewritten at `synchronize`. A cookie's identity is good
/// for the life of the answer. `files` must outlive it.
std::unique_ptr<HTTPCookieStorage> makeMacCookieStorage(const FileManager& files);

/// The default user notification centre.
std::unique_ptr<UserNotificationCenter> makeMacNotificationCenter();

/// The user's home folder.
std::string macHomeFolder();

/// An application's delegate and everything of the system that it uses.
class MacRun {
 public:
  /// Makes all of it, the delegate last.
  explicit MacRun(DelegateFactory makeDelegate);

  /// The delegate, owned by this object.
  ApplicationDelegate& delegate() { return *delegate_; }

 private:
  std::unique_ptr<Application> application_ = makeMacApplication();
  std::unique_ptr<UserDefaults> userDefaults_ = makeMacUserDefaults();
  std::unique_ptr<Bundle> bundle_ = makeMacBundle();
  std::unique_ptr<Keychain> keychain_ = makeMacKeychain();
  // Absolute paths are the running system's, on whatever volume the home folder is.
  FileManager files_{macHomeFolder(), ""};
  std::unique_ptr<HTTPCookieStorage> cookieStorage_ = makeMacCookieStorage(files_);
  std::unique_ptr<UserNotificationCenter> notificationCenter_ = makeMacNotificationCenter();
  std::unique_ptr<ApplicationDelegate> delegate_;
};

/// Calls `step`, on behalf of a caller that no C++ exception may reach. Should it throw, the
/// process ends with `kHardErrorStatus`.
void endingOnError(const std::function<void()>& step) noexcept;

/// Runs the application: `NSApplicationMain`, whose main interface file instantiates the delegate's
/// Objective-C shell. Returns only if that does, with its answer.
int macApplicationMain(int argc, char** argv, DelegateFactory makeDelegate);

}  // namespace tasselby
