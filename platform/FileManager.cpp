#include "platform/FileManager.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/Paths.h"
#include "platform/RemoveTree.h"
#include "platform/Text.h"

namespace tasselby {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

// Below a file there is never anything.
constexpr const char* kNowhere = "/dev/null";

bool hasNul(const std::string& path) {
  return path.find('\0') != std::string::npos;
}

/// The type bits of what is at `path`; 0 when nothing is.
mode_t typeAt(const std::string& path, bool followLinks) {
  struct stat status{};
  if (hasNul(path) ||
      ::fstatat(AT_FDCWD, path.c_str(), &status, followLinks ? 0 : AT_SYMLINK_NOFOLLOW) != 0) {
    return 0;
  }
  return status.st_mode & S_IFMT;
}

std::optional<std::string> readAll(int descriptor, std::size_t limit) {
  struct stat status{};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
      static_cast<std::uintmax_t>(status.st_size) > limit) {
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t count = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    filled += static_cast<std::size_t>(count);
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace

FileManager::FileManager(std::string home) : home_(std::move(home)) {
  const std::size_t users = home_.rfind("/Users/");
  volume_ = users == std::string::npos ? "" : home_.substr(0, users);
}

FileManager::FileManager(std::string home, std::string volume)
    : home_(std::move(home)), volume_(std::move(volume)) {}

std::string FileManager::expandTilde(const std::string& path) const {
  if (path != "~" && !path.starts_with("~/")) {
    return path;
  }
  return join(home_.empty() ? kNowhere : home_, std::string_view(path).substr(1));
}

std::string FileManager::onVolume(const std::string& path) const {
  return join(volume_, path);
}

bool FileManager::fileExistsAtPath(const std::string& path) const {
  return typeAt(path, true) != 0;
}

bool FileManager::isFolderAtPath(const std::string& path) const {
  return typeAt(path, true) == S_IFDIR;
}

bool FileManager::hasFolderType(const std::string& path) const {
  return typeAt(path, false) == S_IFDIR;
}

std::vector<std::string> FileManager::contentsOfDirectoryAtPath(const std::string& path) const {
  std::vector<std::string> names;
  const Folder folder(hasNul(path) ? nullptr : ::opendir(path.c_str()));
  if (!folder) {
    return names;
  }
  for (errno = 0; const dirent* entry = ::readdir(folder.get()); errno = 0) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  if (errno != 0) {
    names.clear();
  }
  return names;
}

bool FileManager::enumerateDeep(const std::string& path,
                                const std::function<bool(const std::string&)>& visit) const {
  if (hasNul(path)) {
    return true;
  }
  std::error_code error;
  std::filesystem::recursive_directory_iterator item(path, error);
  const std::filesystem::recursive_directory_iterator end;
  while (!error && item != end) {
    if (!visit(item->path().native())) {
      return false;
    }
    item.increment(error);
  }
  return true;
}

std::optional<std::string> FileManager::contentsOfFile(const std::string& path,
                                                       std::size_t limit) const {
  // Without O_NONBLOCK, opening a FIFO waits for a writer.
  const int descriptor =
      hasNul(path) ? -1 : ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) {
    return std::nullopt;
  }
  std::optional<std::string> bytes = readAll(descriptor, limit);
  ::close(descriptor);
  return bytes;
}

std::optional<std::string> FileManager::textOfFile(const std::string& path) const {
  std::optional<std::string> text = contentsOfFile(path, kFileLimit);
  return text && isValidUtf8(*text) ? text : std::nullopt;
}

bool FileManager::hasItemAtPath(const std::string& path) const {
  return typeAt(path, false) != 0;
}

int FileManager::openForOverwriting(const std::string& path) const {
  return hasNul(path) ? -1 : ::open(path.c_str(), O_RDWR | O_CLOEXEC);
}

void FileManager::removeItemAtPath(const std::string& path) const {
  if (path.ends_with('/')) {
    return removeItemAtPath(path.substr(0, path.size() - 1));
  }
  if (hasNul(path)) {
    return;
  }
  removeTree(path);
}

bool FileManager::emptyFolderAtPath(const std::string& path,
                                    const std::vector<std::string>& but) const {
  return hasNul(path) || emptyFolder(path, but);
}

void FileManager::setAsideItemAtPath(const std::string& path, const std::string& newPath) const {
  if (!hasNul(path)) {
    std::rename(path.c_str(), newPath.c_str());
  }
}

}  // namespace tasselby
