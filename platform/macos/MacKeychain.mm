// Saved passwords: a search for attributes. The query is made here from nothing but what
// `KeychainQuery` can say, so that neither a secret nor a reference to an item can be asked for.

#import <Foundation/Foundation.h>
#import <Security/Security.h>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"

// A bridge cast has no other spelling.
#pragma clang diagnostic ignored "-Wold-style-cast"

namespace tasselby {
namespace {

/// A string of the C frameworks as the object that it is as well.
NSString* object(CFStringRef string) {
  return (__bridge NSString*)string;
}

NSDictionary* dictionaryOf(const KeychainQuery& query) {
  NSMutableDictionary* dictionary = [NSMutableDictionary dictionaryWithCapacity:5];
  [dictionary setObject:object(kSecClassInternetPassword) forKey:object(kSecClass)];
  if (query.service) {
    [dictionary setObject:nsString(*query.service) forKey:object(kSecAttrService)];
  }
  if (query.account) {
    [dictionary setObject:nsString(*query.account) forKey:object(kSecAttrAccount)];
  }
  if (query.returnAttributes) {
    [dictionary setObject:@(YES) forKey:object(kSecReturnAttributes)];
  }
  const bool all = query.matchLimit == KeychainQuery::MatchLimit::kAll;
  [dictionary setObject:object(all ? kSecMatchLimitAll : kSecMatchLimitOne)
                 forKey:object(kSecMatchLimit)];
  return dictionary;
}

/// An attribute's value as text: a string, bytes as they are, a number or date as it describes
/// itself.
std::string textOf(id value) {
  if ([value isKindOfClass:[NSString class]]) {
    return utf8(value);
  }
  if ([value isKindOfClass:[NSData class]]) {
    NSData* data = value;
    return {static_cast<const char*>([data bytes]), [data length]};
  }
  return utf8([value description]);
}

KeychainAttributes attributesOf(NSDictionary* item) {
  KeychainAttributes attributes;
  for (NSString* code in item) {
    attributes.emplace(utf8(code), textOf([item objectForKey:code]));
  }
  return attributes;
}

class MacKeychain final : public Keychain {
 public:
  Answer copyMatching(const KeychainQuery& query) const override {
    Answer answer;
    @autoreleasepool {
      CFTypeRef found = nullptr;
      answer.status = SecItemCopyMatching((__bridge CFDictionaryRef)dictionaryOf(query), &found);
      const Retained result((__bridge id)found);
      // One match comes as a dictionary, all of them as an array of dictionaries.
      if ([result.get() isKindOfClass:[NSDictionary class]]) {
        answer.items.push_back(attributesOf(result.get()));
      } else if ([result.get() isKindOfClass:[NSArray class]]) {
        for (NSDictionary* item in result.get()) {
          answer.items.push_back(attributesOf(item));
        }
      }
    }
    return answer;
  }
};

}  // namespace

std::unique_ptr<Keychain> makeMacKeychain() {
  return std::make_unique<MacKeychain>();
}

}  // namespace tasselby
