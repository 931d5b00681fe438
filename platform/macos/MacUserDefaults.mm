// Preferences: the process's own domain, then the suites that were added.

#import <Foundation/Foundation.h>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"

namespace tasselby {
namespace {

class MacUserDefaults final : public UserDefaults {
 public:
  void addSuiteNamed(const std::string& suite) override {
    @autoreleasepool {
      [[NSUserDefaults standardUserDefaults] addSuiteNamed:nsString(suite)];
    }
  }

  bool boolForKey(const std::string& key) const override {
    @autoreleasepool {
      return [[NSUserDefaults standardUserDefaults] boolForKey:nsString(key)] != NO;
    }
  }
};

}  // namespace

std::unique_ptr<UserDefaults> makeMacUserDefaults() {
  return std::make_unique<MacUserDefaults>();
}

}  // namespace tasselby
