// What the main interface file instantiates: a shell that hands the application's callbacks on to
// the delegate in C++.

#import <AppKit/AppKit.h>

#include "platform/Process.h"
#include "platform/macos/MacPlatform.h"

namespace {

// The one thing that has to be global: an interface file makes its objects with -init, and nothing
// can be handed to them.
tasselby::DelegateFactory delegateFactory = nullptr;

}  // namespace

@interface WorkerAppDelegate : NSObject <NSApplicationDelegate> {
  // A bare pointer: not every runtime constructs and destroys C++ members.
  tasselby::MacRun* run;
}
@end

@implementation WorkerAppDelegate

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    @autoreleasepool {
      tasselby::endingOnError([self] { run = new tasselby::MacRun(delegateFactory); });
    }
  }
  return self;
}

- (void)dealloc {
  delete run;
  [super dealloc];
}

- (void)awakeFromNib {
  // Not every system's NSObject has one to call; one that has may take it for an error not to.
  if ([NSObject instancesRespondToSelector:@selector(awakeFromNib)]) {
    [super awakeFromNib];
  }
  @autoreleasepool {
    tasselby::endingOnError([self] { run->delegate().awakeFromNib(); });
  }
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  static_cast<void>(notification);
  @autoreleasepool {
    tasselby::endingOnError([self] { run->delegate().applicationDidFinishLaunching(); });
  }
}

// There is no state to restore. Without an answer newer systems print a warning.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
  static_cast<void>(application);
  return YES;
}

// Deliberate: any argument without a "-" counts as a document that the application shall open, the
// browser's name too. Unanswered, it could end in an alert that waits for a click.
- (BOOL)application:(NSApplication*)application openFile:(NSString*)name {
  static_cast<void>(application);
  static_cast<void>(name);
  return YES;
}

@end

namespace tasselby {

int macApplicationMain(int argc, char** argv, DelegateFactory makeDelegate) {
  raiseOpenFileLimit();
  delegateFactory = makeDelegate;
  @autoreleasepool {
    // A browser's name is no document to open; see application:openFile: where it is taken for one.
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:@{@"NSTreatUnknownArgumentsAsOpen" : @"NO"}];
    return NSApplicationMain(argc, const_cast<const char**>(argv));
  }
}

}  // namespace tasselby
