// The process, its bundle and its home folder.

#import <AppKit/AppKit.h>
#include <cstdlib>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"

namespace tasselby {
namespace {

class MacApplication final : public Application {
 public:
  std::vector<std::string> arguments() const override {
    std::vector<std::string> arguments;
    @autoreleasepool {
      for (NSString* argument in [[NSProcessInfo processInfo] arguments]) {
        arguments.push_back(utf8(argument));
      }
    }
    return arguments;
  }

  [[noreturn]] void terminate() override {
    @autoreleasepool {
      [NSApp terminate:[NSApp delegate]];
    }
    // The application may refuse; this function may not return.
    std::exit(EXIT_SUCCESS);
  }
};

class MacBundle final : public Bundle {
 public:
  std::string localizedString(const std::string& key, const std::string& value) const override {
    @autoreleasepool {
      return utf8([[NSBundle mainBundle] localizedStringForKey:nsString(key)
                                                         value:nsString(value)
                                                         table:nil]);
    }
  }
};

}  // namespace

std::unique_ptr<Application> makeMacApplication() {
  return std::make_unique<MacApplication>();
}

std::unique_ptr<Bundle> makeMacBundle() {
  return std::make_unique<MacBundle>();
}

std::string macHomeFolder() {
  @autoreleasepool {
    return utf8(NSHomeDirectory());
  }
}

}  // namespace tasselby
