#pragma once

// What the worker uses of a Mac's AppKit, declared as there.

#include <Foundation/Foundation.h>

@protocol NSApplicationDelegate <NSObject>
@end
@interface NSApplication : NSObject
@property(assign) id<NSApplicationDelegate> delegate;
- (void)terminate:(id)sender;
@end
extern NSApplication* NSApp;
@interface NSObject (NSNibAwaking)
- (void)awakeFromNib __attribute__((objc_requires_super));
@end
extern "C" int NSApplicationMain(int argc, const char* argv[]);
