// What GNUstep does differently from a Mac. Changed here:
// - the home folder is the password file's, whatever $HOME says;
// - an application starts a daemon for notifications between processes, and leaves it running.
// Lived with:
// - a process's own preferences are named after the process, not after the bundle, so that the test
//   programs are named like the bundle;
// - interface files are read uncompiled, and Info.plist is named Info-gnustep.plist;
// - shared cookies are a property list in the home folder;
// - strings refuse a lone surrogate, and NSObject has no awakeFromNib;
// - in Objective-C++, `catch` knows no C++ exception;
// - an argument that is no document ends in an alert each time, on a Mac only at times.

#import <Foundation/Foundation.h>
#include <pwd.h>
#include <cstdlib>

/// Whoever it is, $HOME is the home folder.
extern "C" int getpwnam_r(const char*, passwd* entry, char*, size_t, passwd** result) {
  *entry = {};
  entry->pw_dir = std::getenv("HOME");
  *result = entry;
  return 0;
}

@interface NSDistributedNotificationCenter (None)
@end

@implementation NSDistributedNotificationCenter (None)
+ (NSNotificationCenter*)defaultCenter {
  return nil;
}
@end

/// Read by the sanitizers' runtime. The Objective-C runtime never frees its tables.
extern "C" const char* __asan_default_options() {
  return "detect_leaks=0";
}
