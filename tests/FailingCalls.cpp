// Preloaded into the worker: makes every n-th of chosen system calls fail, or kills the process
// before it.
//
//   FAIL_CALLS   their names with a "," behind each, such as "open,openat,"
//   FAIL_ERROR   the error number; 0 kills
//   FAIL_EVERY   n; only every n-th call fails
//   FAIL_ONCE    set: only the n-th
//   FAIL_FROM    count only from the first call with a path that has one of these texts in it,
//                with a "," behind each; empty: from the start

#include <cerrno>
#include <cstdarg>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

struct Plan {
  std::string calls = text("FAIL_CALLS");
  std::string from = text("FAIL_FROM");
  int error = std::atoi(text("FAIL_ERROR").c_str());
  long every = std::atol(text("FAIL_EVERY").c_str());
  bool once = ::getenv("FAIL_ONCE") != nullptr;
  long count = 0;

  static std::string text(const char* variable) {
    const char* value = ::getenv(variable);
    return value != nullptr ? value : "";
  }
};

Plan& plan() {
  static Plan only;
  return only;
}

void lookAt(const char* path) {
  std::string& from = plan().from;
  for (std::size_t start = 0; path != nullptr && start < from.size();) {
    const std::size_t end = from.find(',', start);
    if (::strstr(path, from.substr(start, end - start).c_str()) != nullptr) {
      from.clear();
      return;
    }
    start = end + 1;
  }
}

/// Whether the call `name` is to fail; sets errno.
bool fails(const char* name, const char* path = nullptr) {
  Plan& now = plan();
  lookAt(path);
  const std::string item = std::string(name) + ",";
  const std::size_t place = now.calls.find(item);
  if (!now.from.empty() || now.every <= 0 || place == std::string::npos ||
      (place != 0 && now.calls[place - 1] != ',')) {
    return false;
  }
  ++now.count;
  if (now.once ? now.count != now.every : now.count % now.every != 0) {
    return false;
  }
  if (now.error == 0) {
    ::kill(::getpid(), SIGKILL);
  }
  errno = now.error;
  return true;
}

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  static auto* const forward = next<decltype(::open)>("open");
  return fails("open", path) ? -1 : forward(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  static auto* const forward = next<decltype(::open64)>("open64");
  return fails("open", path) ? -1 : forward(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  static auto* const forward = next<decltype(::openat)>("openat");
  return fails("openat", path) ? -1 : forward(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  static auto* const forward = next<decltype(::openat64)>("openat64");
  return fails("openat", path) ? -1 : forward(folder, path, flags, mode);
}

DIR* opendir(const char* path) {
  static auto* const forward = next<decltype(::opendir)>("opendir");
  return fails("openat", path) ? nullptr : forward(path);
}

struct dirent* readdir(DIR* folder) {
  static auto* const forward = next<decltype(::readdir)>("readdir");
  return fails("getdents64") ? nullptr : forward(folder);
}

struct dirent64* readdir64(DIR* folder) {
  static auto* const forward = next<decltype(::readdir64)>("readdir64");
  return fails("getdents64") ? nullptr : forward(folder);
}

ssize_t read(int file, void* buffer, size_t size) {
  static auto* const forward = next<decltype(::read)>("read");
  return fails("read") ? -1 : forward(file, buffer, size);
}

ssize_t pread64(int file, void* buffer, size_t size, off64_t offset) {
  static auto* const forward = next<decltype(::pread64)>("pread64");
  return fails("read") ? -1 : forward(file, buffer, size, offset);
}

ssize_t write(int file, const void* buffer, size_t size) {
  static auto* const forward = next<decltype(::write)>("write");
  return fails("write") ? -1 : forward(file, buffer, size);
}

ssize_t writev(int file, const struct iovec* pieces, int count) {
  static auto* const forward = next<decltype(::writev)>("writev");
  return fails("write") ? -1 : forward(file, pieces, count);
}

ssize_t pwrite64(int file, const void* buffer, size_t size, off64_t offset) {
  static auto* const forward = next<decltype(::pwrite64)>("pwrite64");
  return fails("write") ? -1 : forward(file, buffer, size, offset);
}

int fsync(int file) {
  static auto* const forward = next<decltype(::fsync)>("fsync");
  return fails("fsync") ? -1 : forward(file);
}

int fdatasync(int file) {
  static auto* const forward = next<decltype(::fdatasync)>("fdatasync");
  return fails("fsync") ? -1 : forward(file);
}

int ftruncate(int file, off_t size) noexcept {
  static auto* const forward = next<decltype(::ftruncate)>("ftruncate");
  return fails("ftruncate") ? -1 : forward(file, size);
}

int ftruncate64(int file, off64_t size) noexcept {
  static auto* const forward = next<decltype(::ftruncate64)>("ftruncate64");
  return fails("ftruncate") ? -1 : forward(file, size);
}

int rename(const char* from, const char* to) noexcept {
  static auto* const forward = next<decltype(::rename)>("rename");
  return fails("rename", to) ? -1 : forward(from, to);
}

int unlink(const char* path) noexcept {
  static auto* const forward = next<decltype(::unlink)>("unlink");
  return fails("unlink", path) ? -1 : forward(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  static auto* const forward = next<decltype(::unlinkat)>("unlinkat");
  return fails("unlinkat", path) ? -1 : forward(folder, path, flags);
}

int fstat(int file, struct stat* status) noexcept {
  static auto* const forward = next<decltype(::fstat)>("fstat");
  return fails("fstat") ? -1 : forward(file, status);
}

int fstat64(int file, struct stat64* status) noexcept {
  static auto* const forward = next<decltype(::fstat64)>("fstat64");
  return fails("fstat") ? -1 : forward(file, status);
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
  static auto* const forward = next<decltype(::fstatat)>("fstatat");
  return fails("fstat", path) ? -1 : forward(folder, path, status, flags);
}

}  // extern "C"
