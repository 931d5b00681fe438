// A keychain of the dictionaries in the property list ~/GNUstep/Keychain.plist. A query that asks
// for anything but attributes is refused.
//
// As on a Mac, an item of another program's access group ("agrp") is not found.
//
// A Mac's compares some attributes without regard to case, knows no service of an internet
// password, and may ask the user.

#import <Foundation/Foundation.h>
#import <Security/Security.h>

// A bridge cast has no other spelling.
#pragma clang diagnostic ignored "-Wold-style-cast"

static CFStringRef key(NSString* text) {
  return (__bridge CFStringRef)text;
}

const CFStringRef kSecClass = key(@"class");
const CFStringRef kSecClassInternetPassword = key(@"inet");
const CFStringRef kSecAttrService = key(@"svce");
const CFStringRef kSecAttrAccount = key(@"acct");
const CFStringRef kSecReturnAttributes = key(@"return attributes");
const CFStringRef kSecMatchLimit = key(@"limit");
const CFStringRef kSecMatchLimitOne = key(@"one");
const CFStringRef kSecMatchLimitAll = key(@"all");

OSStatus SecItemCopyMatching(CFDictionaryRef given, CFTypeRef* result) {
  constexpr OSStatus kRefused = -50;
  constexpr OSStatus kItemNotFound = -25300;
  NSMutableDictionary* wanted = [[(__bridge NSDictionary*)given mutableCopy] autorelease];
  NSString* limit = [[[wanted objectForKey:@"limit"] retain] autorelease];
  const bool attributes = [[wanted objectForKey:@"return attributes"] boolValue];
  [wanted removeObjectsForKeys:[NSArray arrayWithObjects:@"limit", @"return attributes", nil]];
  NSMutableArray* found = [NSMutableArray array];
  NSString* path = [NSHomeDirectory() stringByAppendingPathComponent:@"GNUstep/Keychain.plist"];
  for (NSDictionary* item in [NSArray arrayWithContentsOfFile:path]) {
    bool matches = [item objectForKey:@"agrp"] == nil;
    for (NSString* name in wanted) {
      if (![[NSArray arrayWithObjects:@"class", @"svce", @"acct", nil] containsObject:name]) {
        return kRefused;
      }
      matches = matches && [[item objectForKey:name] isEqual:[wanted objectForKey:name]];
    }
    if (matches) {
      [found addObject:item];
    }
  }
  if (attributes && [found count] != 0) {
    id answer = [limit isEqual:@"all"] ? found : [found objectAtIndex:0];
    *result = (__bridge CFTypeRef)[answer retain];
  }
  return [found count] != 0 ? 0 : kItemNotFound;
}
