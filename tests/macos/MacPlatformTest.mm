// What only the Mac adapter has to do.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <cstdlib>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

struct Delegate final : UserNotificationCenterDelegate {
  void userNotificationCenter_didActivateNotification(UserNotificationCenter& center,
                                                      const UserNotification& clicked) override {
    center.removeDeliveredNotification(clicked);
  }
  bool userNotificationCenter_shouldPresentNotification(UserNotificationCenter&,
                                                        const UserNotification& one) override {
    return one.title == "shown";
  }
};

TEST(MacNotificationCenter, AsksTheDelegateAndRemovesTheNotificationClicked) {
  const ScratchHome home;
  ::setenv("HOME", home.home().c_str(), 1);
  Delegate delegate;
  const auto center = makeMacNotificationCenter();
  center->setDelegate(&delegate);
  for (const char* title : {"shown", "clicked", "hidden"}) {
    UserNotification notification;
    notification.title = title;
    notification.soundName = "Ping";
    center->scheduleNotification(notification);
  }
  NSUserNotificationCenter* system = [NSUserNotificationCenter defaultUserNotificationCenter];
  [[system delegate] userNotificationCenter:system
                    didActivateNotification:[[system deliveredNotifications] objectAtIndex:1]];
  EXPECT_EQ(home.contents("GNUstep Notifications"),
            "shown||(null)|1|Ping|1\nhidden||(null)|1|Ping|0\n");
}

TEST(MacCookieStorage, DeletesFromTheSharedStorage) {
  const ScratchHome home;
  ::setenv("HOME", home.home().c_str(), 1);
  const FileManager files(home.home());
  const auto storage = makeMacCookieStorage(files);
  NSDictionary* properties =
      [@"{Domain = a.test; Name = gone; Path = \"/\"; Value = v;}" propertyList];
  [[NSHTTPCookieStorage sharedHTTPCookieStorage]
      setCookie:[NSHTTPCookie cookieWithProperties:properties]];
  const std::vector<HTTPCookie> cookies = storage->cookies();
  ASSERT_EQ(cookies.size(), 1U);
  EXPECT_EQ(cookies[0].name + cookies[0].domain, "gonea.test");
  storage->deleteCookie(cookies[0]);
  EXPECT_TRUE(storage->cookies().empty());
}

TEST(FoundationText, LosesNothingOnTheWay) {
  const std::string all("a\0\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80", 11);
  EXPECT_EQ(utf8(nsString(all)), all);
  EXPECT_EQ(utf8(nsString("a\xFF")), "a\xC3\xBF") << "no UTF-8: a character a byte";
  EXPECT_EQ(utf8(nil), "");
  NSString* pair = nsString("\xF0\x9F\x98\x80");
  EXPECT_EQ(utf8([pair substringToIndex:1]) + utf8([pair substringFromIndex:1]),
            "\xED\xA0\xBD\xED\xB8\x80");
}

}  // namespace
}  // namespace tasselby
