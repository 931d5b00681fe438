#pragma once

// Stands in for the header of that name: there is no keychain. See Keychain.mm.

using OSStatus = int;
using CFTypeRef = const void*;
using CFStringRef = const struct OpaqueString*;
using CFDictionaryRef = const struct OpaqueDictionary*;

extern const CFStringRef kSecClass;
extern const CFStringRef kSecClassInternetPassword;
extern const CFStringRef kSecAttrService;
extern const CFStringRef kSecAttrAccount;
extern const CFStringRef kSecReturnAttributes;
extern const CFStringRef kSecMatchLimit;
extern const CFStringRef kSecMatchLimitOne;
extern const CFStringRef kSecMatchLimitAll;

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);
