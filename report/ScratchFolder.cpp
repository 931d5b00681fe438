#include "report/ScratchFolder.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <poll.h>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
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

/// Makes `to` share the bytes of `from`; false where the file system cannot.
bool clone(const std::string& from, const std::string& to) {
#ifdef __APPLE__
  return ::clonefile(from.c_str(), to.c_str(), 0) == 0;
#elif defined(__linux__)
  const int source = ::open(from.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int target = ::open(to.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
  const bool cloned = ::ioctl(target, FICLONE, source) == 0;
  ::close(source);
  ::close(target);
  return cloned;
#else
  return false;
#endif
}

[[noreturn]] void throwNoRoom() {
  throw std::runtime_error("no room for a scratch folder; TMPDIR names another place");
}

/// Waits for the end of what can be read from `held`, shows the seconds, and removes `folder`.
[[noreturn]] void keepUntilReleased(const std::string& folder, int held) {
  pollfd end{held, POLLIN, 0};
  int seconds = 0;
  while (::poll(&end, 1, 1000) == 0) {
    if (::isatty(STDERR_FILENO) != 0) {
      std::cerr << "\rLooking, " << ++seconds << " s" << std::flush;
    }
  }
  std::cerr << (seconds != 0 ? "\r\033[K" : "") << std::flush;
  std::error_code ignored;
  fs::remove_all(folder, ignored);
  ::_exit(EXIT_SUCCESS);
}

}  // namespace

ScratchFolder::ScratchFolder() {
  std::error_code error;
  const fs::path temporary = fs::temp_directory_path(error);
  if (error) {
    throwNoRoom();
  }
  path_ = (fs::canonical(temporary, error) / "tasselby-XXXXXX").native();
  // No signal comes between the folder and its keeper, and none that can be blocked to the keeper.
  sigset_t every;
  sigset_t before;
  sigfillset(&every);
  ::sigprocmask(SIG_SETMASK, &every, &before);
  std::array<int, 2> ends{};
  if (error || ::pipe(ends.data()) != 0 || ::mkdtemp(path_.data()) == nullptr) {
    throwNoRoom();
  }
  held_ = ends[1];
  const pid_t keeper = ::fork();
  if (keeper == 0) {
    ::close(held_);
    keepUntilReleased(path_, ends[0]);
  }
  if (keeper < 0) {
    fs::remove(path_, error);
    throwNoRoom();
  }
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
}

ScratchFolder::~ScratchFolder() {
  ::close(held_);
  ::wait(nullptr);
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
  // For the copy, one more to compare with, and a journal.
  if (3 * fs::file_size(from, error) > fs::space(path_, error).available) {
    throwNoRoom();
  }
  fs::create_directories(fs::path(to).parent_path(), error);
  if (!clone(from, to)) {
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
  }
  const bool writable = ::access(from.c_str(), W_OK) == 0 && ::access(folder.c_str(), W_OK) == 0;
  if (error || ::chmod(to.c_str(), writable ? S_IRUSR | S_IWUSR : S_IRUSR) != 0) {
    throwNoRoom();
  }
}

}  // namespace tasselby
