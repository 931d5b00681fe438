#pragma once

// Stands in for the header of that name: there is no keychain. See Keychain.mm.

#import <Foundation/NSString.h>

using OSStatus = int;
using CFTypeRef = const void*;
using CFStringRef = const struct OpaqueString*;
using CFDictionaryRef = const struct OpaqueDictionary*;

#define STAND_IN_KEY(text) (__bridge CFStringRef) @text
inline const CFStringRef kSecClass = STAND_IN_KEY("class"),
                         kSecClassInternetPassword = STAND_IN_KEY("inet"),
                         kSecAttrService = STAND_IN_KEY("svce"),
                         kSecAttrAccount = STAND_IN_KEY("acct"),
                         kSecReturnAttributes = STAND_IN_KEY("attributes"),
                         kSecMatchLimit = STAND_IN_KEY("limit"),
                         kSecMatchLimitOne = STAND_IN_KEY("one"),
                         kSecMatchLimitAll = STAND_IN_KEY("all");

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);
