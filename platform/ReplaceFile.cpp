#include "platform/ReplaceFile.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Paths.h"

namespace tasselby {
namespace {

constexpr mode_t kPermissionBits = 07777;

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// Owner and group come before the permission bits, some of which a change of them clears.
bool takeOver(int descriptor, const struct stat& old) {
  // Only a superuser may give a file away.
  [[maybe_unused]] const bool owned = ::fchown(descriptor, old.st_uid, old.st_gid) == 0;
  return ::fchmod(descriptor, old.st_mode & kPermissionBits) == 0;
}

}  // namespace

bool replaceFile(const std::string& path, std::string_view bytes) {
  struct stat old = {};
  if (::lstat(path.c_str(), &old) != 0 || !S_ISREG(old.st_mode)) {
    return false;
  }
  // In the same folder, for only there is a rename one step.
  std::string fresh = folderOf(path) + "/.tasselby-XXXXXX";
  const int descriptor = ::mkostemp(fresh.data(), O_CLOEXEC);
  if (descriptor < 0) {
    return false;
  }
  const bool written =
      writeAll(descriptor, bytes) && takeOver(descriptor, old) && ::fsync(descriptor) == 0;
  ::close(descriptor);
  if (!written || std::rename(fresh.c_str(), path.c_str()) != 0) {
    ::unlink(fresh.c_str());
    return false;
  }
  return true;
}

}  // namespace tasselby
