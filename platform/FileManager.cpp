#include "platform/FileManager.h"

#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/Paths.h"
#include "platform/RemoveTree.h"
#include "platform/Text.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

// Below a file there is never anything.
constexpr const char* kNowhere = "/dev/null";

/// What the system takes for `path`: nothing where a NUL byte would cut it short.
std::string whole(const std::string& path) {
  return path.find('\0') == std::string::npos ? path : "";
}

/// The type bits of what the system finds at `path`; 0 when that is nothing.
mode_t typeAt(const std::string& path, bool followLinks) {
  struct stat status = {};
  const int result = followLinks ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status);
  return result == 0 ? status.st_mode & S_IFMT : 0;
}

std::optional<std::string> readAll(std::FILE* file, std::size_t limit) {
  struct stat status = {};
  if (::fstat(::fileno(file), &status) != 0 || !S_ISREG(status.st_mode) ||
      static_cast<std::uintmax_t>(status.st_size) > limit) {
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  const bool isWhole = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return isWhole ? std::optional(std::move(bytes)) : std::nullopt;
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

std::string FileManager::located(const std::string& path, bool /*followLinks*/) const {
  return whole(path);
}

bool FileManager::fileExistsAtPath(const std::string& path) const {
  return typeAt(located(path, true), true) != 0;
}

bool FileManager::isFolderAtPath(const std::string& path) const {
  return typeAt(located(path, true), true) == S_IFDIR;
}

bool FileManager::hasFolderType(const std::string& path) const {
  return typeAt(located(path, false), false) == S_IFDIR;
}

std::vector<std::string> FileManager::contentsOfDirectoryAtPath(const std::string& path) const {
  std::vector<std::string> names;
  std::error_code error;
  const fs::directory_iterator end;
  for (fs::directory_iterator item(located(path, true), error); item != end;
       item.increment(error)) {
    names.push_back(item->path().filename().native());
  }
  if (error) {
    names.clear();
  }
  return names;
}

bool FileManager::enumerateDeep(const std::string& path,
                                const std::function<bool(const std::string&)>& visit) const {
  std::error_code error;
  const fs::recursive_directory_iterator end;
  for (fs::recursive_directory_iterator item(located(path, true), error); !error && item != end;
       item.increment(error)) {
    if (!visit(item->path().native())) {
      return false;
    }
  }
  return true;
}

std::optional<std::string> FileManager::contentsOfFile(const std::string& path,
                                                       std::size_t limit) const {
  // Without O_NONBLOCK, opening a FIFO waits for a writer.
  const int descriptor =
      ::open(located(path, true).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  std::FILE* const file = ::fdopen(descriptor, "r");
  if (file == nullptr) {
    return std::nullopt;
  }
  std::optional<std::string> bytes = readAll(file, limit);
  std::fclose(file);
  return bytes;
}

std::optional<std::string> FileManager::textOfFile(const std::string& path) const {
  std::optional<std::string> text = contentsOfFile(path, kFileLimit);
  return text && isValidUtf8(*text) ? text : std::nullopt;
}

bool FileManager::hasItemAtPath(const std::string& path) const {
  return typeAt(located(path, false), false) != 0;
}

int FileManager::openForOverwriting(const std::string& path) const {
  return ::open(whole(path).c_str(), O_RDWR | O_CLOEXEC);
}

void FileManager::removeItemAtPath(const std::string& path) const {
  if (path.ends_with('/')) {
    return removeItemAtPath(path.substr(0, path.size() - 1));
  }
  removeTree(whole(path));
}

bool FileManager::emptyFolderAtPath(const std::string& path,
                                    const std::vector<std::string>& but) const {
  return emptyFolder(whole(path), but);
}

void FileManager::setAsideItemAtPath(const std::string& path, const std::string& newPath) const {
  std::rename(whole(path).c_str(), newPath.c_str());
}

}  // namespace tasselby
