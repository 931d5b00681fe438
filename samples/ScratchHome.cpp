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

namespace {

std::string bytesOf(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

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

ScratchHome& ScratchHome::file(const std::string& path, const std::string& contents) {
  const fs::path full = this->path(path);
  fs::create_directories(full.parent_path());
  std::ofstream(full, std::ios::binary) << contents;
  return *this;
}

ScratchHome& ScratchHome::folder(const std::string& path) {
  fs::create_directories(this->path(path));
  return *this;
}

ScratchHome& ScratchHome::link(const std::string& path, const std::string& target) {
  const fs::path full = this->path(path);
  fs::create_directories(full.parent_path());
  fs::create_symlink(target, full);
  return *this;
}

ScratchHome& ScratchHome::socket(const std::string& path) {
  fs::create_directories(fs::path(this->path(path)).parent_path());
  makeSocket(this->path(path), volume());
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

std::string ScratchHome::contents(const std::string& path) const {
  return bytesOf(this->path(path));
}

std::map<std::string, std::string> snapshotOf(const fs::path& folder) {
  std::map<std::string, std::string> entries;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    std::string& contents = entries[entry.path().lexically_relative(folder).native()];
    if (entry.is_symlink()) {
      contents = fs::read_symlink(entry.path()).native();
    } else {
      contents = entry.is_directory() ? "/" : bytesOf(entry.path());
    }
  }
  return entries;
}

}  // namespace tasselby
