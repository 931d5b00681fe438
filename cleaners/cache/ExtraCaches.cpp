// Caches that Safari's web engine keeps outside of the browser's own folders: two property lists
// beside the cookies, and the media and application caches of the web processes in the per-user
// temporary folders.

#include <functional>
#include <string>

#include "app/WorkerAppDelegate.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"

namespace tasselby {
namespace {

constexpr const char* kTemporaryFolders = "/private/var/folders/";
constexpr int kLevels = 4;

/// Calls `visit` with path and name of every folder exactly `levels` listings below `path`.
/// Links are no folders.
void visitFolders(const FileManager& files, const std::string& path, int levels,
                  const std::function<void(const std::string&, const std::string&)>& visit) {
  for (const std::string& name : files.contentsOfDirectoryAtPath(path)) {
    const std::string entry = join(path, name);
    if (!files.hasFolderType(entry)) {
      continue;
    }
    if (levels > 1) {
      visitFolders(files, entry, levels - 1, visit);
    } else {
      visit(entry, name);
    }
  }
}

void disposeIfThere(const FileManager& files, const std::string& path, bool secure) {
  if (files.fileExistsAtPath(path)) {
    dispose(files, path, secure);
  }
}

}  // namespace

void WorkerAppDelegate::clearExtraCache() {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const FileManager& files = platform_.files;
  const std::string folders = files.onVolume(kTemporaryFolders);
  visitFolders(files, folders, kLevels,
               [&files, secure](const std::string& path, const std::string& name) {
                 if (name == "MediaCache") {
                   // Deliberate: whichever application's it is, which its name does not tell.
                   dispose(files, path, secure);
                 } else if (name == "com.apple.Safari") {
                   disposeIfThere(files, join(path, "ApplicationCache.db"), secure);
                 } else if (name == "com.apple.WebKit.WebContent+com.apple.Safari" ||
                            name == "com.apple.WebProcess+com.apple.Safari") {
                   disposeIfThere(files, join(path, "MediaCache"), secure);
                 }
               });
}

void WorkerAppDelegate::clearExtraCookieCache() {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  for (const char* path : {"~/Library/Cookies/Cookies.plist", "~/Library/Cookies/HSTS.plist"}) {
    dispose(platform_.files, platform_.files.expandTilde(path), secure);
  }
}

}  // namespace tasselby
