#pragma once

// Stands in for the header of that name: there is no keychain. See Keychain.mm.

#import <Foundation/NSDictionary.h>

using OSStatus = int;
using CFTypeRef = const void*;
using CFStringRef = NSString*;
using CFDictionaryRef = NSDictionary*;

inline CFStringRef const kSecClass = @"class", kSecClassInternetPassword = @"inet",
                         kSecAttrService = @"svce", kSecAttrAccount = @"acct",
                         kSecReturnAttributes = @"attributes", kSecMatchLimit = @"limit",
                         kSecMatchLimitOne = @"one", kSecMatchLimitAll = @"all";

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);
