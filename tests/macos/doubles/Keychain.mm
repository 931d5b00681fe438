// A keychain that answers what the offline one does. A Mac's compares some attributes without
// regard to case, knows no service of an internet password, and may ask the user.

#import <Foundation/Foundation.h>
#import <Security/Security.h>

#import "platform/macos/FoundationText.h"
#include "platform/offline/OfflinePlatform.h"

// A bridge cast has no other spelling.
#pragma clang diagnostic ignored "-Wold-style-cast"

using namespace tasselby;

OSStatus SecItemCopyMatching(CFDictionaryRef given, CFTypeRef* result) {
  const auto textAt = [given](NSString* key) -> std::optional<std::string> {
    NSString* text = [given objectForKey:key];
    return text == nil ? std::nullopt : std::optional(utf8(text));
  };
  const FileManager files(utf8(NSHomeDirectory()));
  const Keychain::Answer answer = makeOfflineKeychain(files)->copyMatching(
      {KeychainQuery::ItemClass::kInternetPassword, textAt(@"svce"), textAt(@"acct"),
       [[given objectForKey:@"attributes"] boolValue] != NO, KeychainQuery::MatchLimit::kAll});
  NSMutableArray* found = [NSMutableArray array];
  for (const KeychainAttributes& attributes : answer.items) {
    [found addObject:[NSMutableDictionary dictionary]];
    for (const auto& [key, value] : attributes) {
      [[found lastObject] setObject:nsString(value) forKey:nsString(key)];
    }
  }
  *result = (__bridge CFTypeRef)[textAt(@"limit") == "all" ? found : [found firstObject] retain];
  return textAt(@"class") == "inet" ? answer.status : Keychain::kItemNotFound;
}
