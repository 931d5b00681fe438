#include "platform/macos/MacPlatform.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cstdlib>

#include "platform/HardError.h"

namespace tasselby {

MacRun::MacRun(DelegateFactory makeDelegate)
    : delegate_(makeDelegate(Platform{*application_, *userDefaults_, *bundle_, *keychain_,
                                      *cookieStorage_, *notificationCenter_, files_,
                                      kCFCoreFoundationVersionNumber})) {}

// In a C++ file, because there every runtime's `catch` knows both languages' exceptions.
void endingOnError(const std::function<void()>& step) noexcept {
  try {
    step();
  } catch (...) {
    // Deliberate: whatever it is, also what the frameworks raise. Their event loop would report it
    // and go on, and a worker without a window would then stay for good.
    std::exit(kHardErrorStatus);
  }
}

}  // namespace tasselby
