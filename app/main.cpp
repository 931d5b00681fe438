#include <memory>

#include "app/WorkerAppDelegate.h"

#if defined(TASSELBY_MACOS)
#include "platform/macos/MacPlatform.h"
#else
#include "platform/offline/OfflinePlatform.h"
#endif

namespace {

std::unique_ptr<tasselby::ApplicationDelegate> makeDelegate(const tasselby::Platform& platform) {
  return std::make_unique<tasselby::WorkerAppDelegate>(platform);
}

}  // namespace

int main(int argc, char* argv[]) {
#if defined(TASSELBY_MACOS)
  return tasselby::macApplicationMain(argc, argv, makeDelegate);
#else
  return tasselby::offlineApplicationMain(argc, argv, makeDelegate);
#endif
}
