#include "report/ScratchFolder.h"

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>

#ifdef __linux__
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif
#ifdef __APPLE__
#include <sys/clonefile.h>
#endif

namespace tasselby {
namespace fs = std::filesystem;

namespace {

// For whatever is written beside the copies.
constexpr std::uintmax_t kSpareRoom = std::uintmax_t{1} << 20;

/// Makes `to` share the bytes of `from`; false where the file system cannot.
bool clone(const std::string& from, const std::string& to) {
#ifdef __APPLE__
  return ::clonefile(from.c_str(), to.c_str(), 0) == 0;
#elif defined(__linux__)
  const int source = ::open(from.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int target = ::open(to.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
  const bool cloned = source >= 0 && target >= 0 && ::ioctl(target, FICLONE, source) == 0;
  ::close(source);
  ::close(target);
  return cloned;
#else
  return false;
#endif
}

}  // namespace

ScratchFolder::ScratchFolder() {
  std::error_code error;
  std::string made = (fs::temp_directory_path(error) / "tasselby-XXXXXX").native();
  if (error || ::mkdtemp(made.data()) == nullptr) {
    throw ScratchError();
  }
  const fs::path whole = fs::canonical(made, error);
  path_ = error ? made : whole.native();
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void ScratchFolder::copy(const std::string& from, const std::string& to) const {
  struct stat status{};
  struct statvfs room{};
  if (::stat(from.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
      ::access(from.c_str(), R_OK) != 0) {
    return;
  }
  if (::statvfs(path_.c_str(), &room) != 0 ||
      3 * static_cast<std::uintmax_t>(status.st_size) + kSpareRoom >
          std::uintmax_t{room.f_bavail} * room.f_frsize) {
    throw ScratchError();
  }
  std::error_code error;
  fs::create_directories(fs::path(to).parent_path(), error);
  if (!clone(from, to)) {
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
  }
  const mode_t mode = mayRemove(from) && ::access(from.c_str(), W_OK) == 0 ? S_IWUSR : 0;
  if (error || ::chmod(to.c_str(), S_IRUSR | mode) != 0) {
    throw ScratchError();
  }
}

void ScratchFolder::copyDatabase(const std::string& from, const std::string& to) const {
  for (const char* ending : {"", "-journal", "-wal"}) {
    copy(from + ending, to + ending);
  }
}

bool mayRemove(const std::string& path) {
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace tasselby
