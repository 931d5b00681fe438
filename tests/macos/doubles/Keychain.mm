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
  NSDictionary* wanted = (__bridge NSDictionary*)given;
  const auto textAt = [wanted](NSString* key) -> std::optional<std::string> {
    NSString* text = [wanted objectForKey:key];
    return text == nil ? std::nullopt : std::optional(utf8(text));
  };
  KeychainQuery query;
  query.service = textAt(@"svce");
  query.account = textAt(@"acct");
  query.returnAttributes = [[wanted objectForKey:@"attributes"] boolValue];
  const bool all = textAt(@"limit") == "all";
  query.matchLimit = all ? KeychainQuery::MatchLimit::kAll : KeychainQuery::MatchLimit::kOne;
  const FileManager files(utf8(NSHomeDirectory()));
  const Keychain::Answer answer = makeOfflineKeychain(files)->copyMatching(query);
  NSMutableArray* found = [NSMutableArray array];
  for (const KeychainAttributes& attributes : answer.items) {
    NSMutableDictionary* item = [NSMutableDictionary dictionary];
    for (const auto& [key, value] : attributes) {
      [item setObject:nsString(value) forKey:nsString(key)];
    }
    [found addObject:item];
  }
  if ([found count] != 0) {
    *result = (__bridge CFTypeRef)[all ? found : [found objectAtIndex:0] retain];
  }
  return textAt(@"class") == "inet" ? answer.status : Keychain::kItemNotFound;
}
