#include "report/ScratchFolder.h"

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
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

void ScratchFolder::copyStore(const std::string& from, const std::string& to) const {
  for (const char* ending : {"", "-journal", "-wal"}) {
    copy(from + ending, to + ending);
  }
}

void ScratchFolder::copy(const std::string& from, const std::string& to) const {
  std::error_code error;
  const fs::path folder = fs::path(from).parent_path();
  if (!fs::is_regular_file(from, error) || ::access(from.c_str(), R_OK) != 0) {
    return;
  }
  if (3 * fs::file_size(from, error) + kSpareRoom > fs::space(path_, error).available) {
    throw ScratchError();
  }
  fs::create_directories(fs::path(to).parent_path(), error);
  if (!clone(from, to)) {
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
  }
  const bool writable = ::access(from.c_str(), W_OK) == 0 && ::access(folder.c_str(), W_OK) == 0;
  if (error || ::chmod(to.c_str(), writable ? S_IRUSR | S_IWUSR : S_IRUSR) != 0) {
    throw ScratchError();
  }
}

}  // namespace tasselby
