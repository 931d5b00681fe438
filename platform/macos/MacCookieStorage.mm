// The shared cookie storage.

#import <Foundation/Foundation.h>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"

namespace tasselby {
namespace {

class MacCookieStorage final : public HTTPCookieStorage {
 public:
  std::vector<HTTPCookie> cookies() override {
    std::vector<HTTPCookie> cookies;
    @autoreleasepool {
      for (NSHTTPCookie* cookie in [[NSHTTPCookieStorage sharedHTTPCookieStorage] cookies]) {
        cookies.push_back({[answered() count], utf8([cookie name]), utf8([cookie domain])});
        [answered() addObject:cookie];
      }
    }
    return cookies;
  }

  void deleteCookie(const HTTPCookie& cookie) override {
    @autoreleasepool {
      if (cookie.identity < [answered() count]) {
        NSHTTPCookie* object = [answered() objectAtIndex:cookie.identity];
        [[NSHTTPCookieStorage sharedHTTPCookieStorage] deleteCookie:object];
      }
    }
  }

  // The storage writes by itself; there is nothing to wait for.
  void synchronize() override {}

 private:
  NSMutableArray* answered() const { return answered_.get(); }

  // Every cookie ever answered; its identity is its place. Never emptied, so that an identity
  // means the same cookie after another call of `cookies`.
  Retained answered_{[[NSMutableArray alloc] init]};
};

}  // namespace

std::unique_ptr<HTTPCookieStorage> makeMacCookieStorage() {
  return std::make_unique<MacCookieStorage>();
}

}  // namespace tasselby
