// What only the Mac adapter has to do.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <cstdlib>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/ScratchHome.h"

@interface NSUserNotificationCenter (Click)
- (void)clickFirst;
@end

@interface LoneSurrogates : NSString
@end

@implementation LoneSurrogates
- (NSUInteger)length {
  return 3;
}
- (unichar)characterAtIndex:(NSUInteger)index {
  return index == 0 ? 'a' : index == 1 ? 0xDE00 : 0xD83D;
}
@end

namespace tasselby {
namespace {

class RemovingDelegate final : public UserNotificationCenterDelegate {
 public:
  void userNotificationCenter_didActivateNotification(
      UserNotificationCenter& center, const UserNotification& notification) override {
    center.removeDeliveredNotification(notification);
  }
  bool userNotificationCenter_shouldPresentNotification(
      UserNotificationCenter& /*center*/, const UserNotification& notification) override {
    return notification.title == "first";
  }
};

TEST(MacNotificationCenter, AsksTheDelegateAndRemovesTheNotificationClicked) {
  ScratchHome home;
  ::setenv("HOME", home.home().c_str(), 1);
  RemovingDelegate delegate;
  const auto center = makeMacNotificationCenter();
  center->setDelegate(&delegate);
  for (const char* title : {"first", "second", "first"}) {
    UserNotification notification;
    notification.title = title;
    notification.soundName = "Ping";
    center->scheduleNotification(notification);
  }
  [[NSUserNotificationCenter defaultUserNotificationCenter] clickFirst];
  EXPECT_EQ(home.contents("GNUstep Notifications"),
            "second||(null)|1|Ping|0\nfirst||(null)|1|Ping|1\n");
}

TEST(MacCookieStorage, TellsTheSharedStoragesCookiesFromSafaris) {
  ScratchHome home;
  ::setenv("HOME", home.home().c_str(), 1);
  home.file("Library/Cookies/Cookies.binarycookies", binaryCookieFile({{"b.test", "safari"}}));
  const FileManager files(home.home());
  const auto storage = makeMacCookieStorage(files);
  @autoreleasepool {
    [[NSHTTPCookieStorage sharedHTTPCookieStorage] setCookie:[NSHTTPCookie cookieWithProperties:@{
                                                     NSHTTPCookieDomain : @"a.test",
                                                     NSHTTPCookieName : @"shared",
                                                     NSHTTPCookiePath : @"/",
                                                     NSHTTPCookieValue : @"v"
                                                   }]];
  }
  std::vector<HTTPCookie> cookies = storage->cookies();
  ASSERT_EQ(cookies.size(), 2U);
  storage->deleteCookie(cookies[0]);
  storage->synchronize();
  cookies = storage->cookies();
  ASSERT_EQ(cookies.size(), 1U);
  EXPECT_EQ(cookies[0].name, "safari");
}

TEST(FoundationText, LosesNothingOnTheWay) {
  @autoreleasepool {
    for (const std::string& text :
         {std::string("a\0b", 3), std::string("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80")}) {
      EXPECT_EQ(utf8(nsString(text)), text);
    }
    EXPECT_EQ(utf8(nsString("a\xFF")), "a\xC3\xBF") << "no UTF-8: a character a byte";
    EXPECT_EQ(utf8(nil), "");
    EXPECT_EQ(utf8([[[LoneSurrogates alloc] init] autorelease]), "a\xED\xB8\x80\xED\xA0\xBD");
  }
}

}  // namespace
}  // namespace tasselby
