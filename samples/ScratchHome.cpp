#include "samples/ScratchHome.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tasselby {
namespace fs = std::filesystem;

std::string bytesOf(const fs::path& path) {
  std::string bytes(fs::is_regular_file(path) ? fs::file_size(path) : 0, '\0');
  std::ifstream(path, std::ios::binary).read(bytes.data(), std::ssize(bytes));
  return bytes;
}

std::optional<std::string> entryAt(const fs::path& path) {
  switch (fs::symlink_status(path).type()) {
    case fs::file_type::not_found:
      return std::nullopt;
    case fs::file_type::symlink:
      return fs::read_symlink(path).native();
    case fs::file_type::directory:
      return "/";
    default:
      return bytesOf(path);
  }
}

void makeFile(const fs::path& path, const std::string& contents) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << contents;
}

void makeSocket(const std::string& path, const std::string& folder) {
  // An address has room for some hundred bytes: bound at a short path and moved from there.
  const std::string bound = folder + "/socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  bound.copy(address.sun_path, sizeof address.sun_path - 1);
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
  if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    fs::rename(bound, path);
  }
  ::close(descriptor);
}

ScratchHome::ScratchHome() {
  fs::create_directories(home());
}

std::string ScratchHome::made(const std::string& path) const {
  const std::string full = this->path(path);
  fs::create_directories(fs::path(full).parent_path());
  return full;
}

ScratchHome& ScratchHome::file(const std::string& path, const std::string& contents) {
  makeFile(this->path(path), contents);
  return *this;
}

ScratchHome& ScratchHome::folder(const std::string& path) {
  fs::create_directories(this->path(path));
  return *this;
}

ScratchHome& ScratchHome::link(const std::string& path, const std::string& target) {
  fs::create_symlink(target, made(path));
  return *this;
}

ScratchHome& ScratchHome::socket(const std::string& path) {
  makeSocket(made(path), volume());
  return *this;
}

bool ScratchHome::has(const std::string& path) const {
  return fs::exists(fs::symlink_status(this->path(path)));
}

Names ScratchHome::list(const std::string& path) const {
  Names names;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(this->path(path), ignored)) {
    names.push_back(entry.path().filename().native());
  }
  std::ranges::sort(names);
  return names;
}

std::map<std::string, std::string> snapshotOf(const fs::path& folder) {
  std::map<std::string, std::string> entries;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    entries[entry.path().lexically_relative(folder)] = entryAt(entry.path()).value_or("");
  }
  return entries;
}

}  // namespace tasselby
