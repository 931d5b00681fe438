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

/// Owner and group come before the permission bits, some of which a change of them clears.
bool takeOver(int descriptor, const struct stat& old) {
  // Only a superuser may give a file away.
  [[maybe_unused]] const bool owned = ::fchown(descriptor, old.st_uid, old.st_gid) == 0;
  return ::fchmod(descriptor, old.st_mode & kPermissionBits) == 0;
}

}  // namespace

void replaceFile(const std::string& path, std::string_view bytes) {
  struct stat old = {};
  if (::lstat(path.c_str(), &old) != 0 || !S_ISREG(old.st_mode)) {
    return;
  }
  // In the same folder, for only there is a rename one step.
  std::string fresh = folderOf(path) + "/.tasselby-XXXXXX";
  std::FILE* const file = ::fdopen(::mkostemp(fresh.data(), O_CLOEXEC), "w");
  if (file == nullptr) {
    return;
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() &&
                       std::fflush(file) == 0 && takeOver(::fileno(file), old) &&
                       ::fsync(::fileno(file)) == 0;
  std::fclose(file);
  if (written) {
    std::rename(fresh.c_str(), path.c_str());
  }
  // Where that was done, nothing has this name any more.
  ::unlink(fresh.c_str());
}

}  // namespace tasselby
