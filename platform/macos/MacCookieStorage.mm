// The shared cookie storage, and Safari's own files: since macOS 10.11 the storage that a process
// is given as the shared one is its own, and Safari's cookies are not in it.

#import <Foundation/Foundation.h>

#include "platform/SafariCookies.h"
#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"

namespace tasselby {
namespace {

// Set in the identity of a cookie out of Safari's files; the rest is its identity there.
constexpr std::uint64_t kSafaris = std::uint64_t{1} << 63;

class MacCookieStorage final : public HTTPCookieStorage {
 public:
  explicit MacCookieStorage(const FileManager& files) : safari_(makeSafariCookies(files)) {}

  std::vector<HTTPCookie> cookies() override {
    std::vector<HTTPCookie> cookies;
    @autoreleasepool {
      for (NSHTTPCookie* cookie in [[NSHTTPCookieStorage sharedHTTPCookieStorage] cookies]) {
        cookies.push_back({[answered() count], utf8([cookie name]), utf8([cookie domain])});
        [answered() addObject:cookie];
      }
    }
    for (HTTPCookie& cookie : safari_->cookies()) {
      cookie.identity |= kSafaris;
      cookies.push_back(std::move(cookie));
    }
    return cookies;
  }

  void deleteCookie(const HTTPCookie& cookie) override {
    if ((cookie.identity & kSafaris) != 0) {
      HTTPCookie ofSafari = cookie;
      ofSafari.identity ^= kSafaris;
      safari_->deleteCookie(ofSafari);
      return;
    }
    @autoreleasepool {
      if (cookie.identity < [answered() count]) {
        NSHTTPCookie* object = [answered() objectAtIndex:cookie.identity];
        [[NSHTTPCookieStorage sharedHTTPCookieStorage] deleteCookie:object];
      }
    }
  }

  // The system's storage writes by itself; there is nothing to wait for.
  void synchronize() override { safari_->synchronize(); }

 private:
  NSMutableArray* answered() const { return answered_.get(); }

  std::unique_ptr<HTTPCookieStorage> safari_;
  // Every cookie of the shared storage ever answered; its identity is its place. Never emptied, so
  // that an identity means the same cookie after another call of `cookies`.
  Retained answered_{[[NSMutableArray alloc] init]};
};

}  // namespace

std::unique_ptr<HTTPCookieStorage> makeMacCookieStorage(const FileManager& files) {
  return std::make_unique<MacCookieStorage>(files);
}

}  // namespace tasselby
