#include "report/StandIn.h"

#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/Paths.h"
#include "report/Stores.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

// As many as the systems themselves follow, and a few more.
constexpr int kMostLinks = 40;

/// The folder that stands in for the root of the file system.
std::string rootIn(const ScratchFolder& scratch) {
  return scratch.path() + "/now";
}

/// Puts the parts of `path` on `parts`, the first one last.
void pushParts(std::vector<std::string>& parts, std::string_view path) {
  while (!path.empty()) {
    const std::size_t slash = path.rfind('/');
    parts.emplace_back(slash == std::string_view::npos ? path : path.substr(slash + 1));
    path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
  }
}

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

StandIn::StandIn(const FileManager& real, const ScratchFolder& scratch)
    : FileManager(rootIn(scratch) + real.expandTilde("~"), rootIn(scratch) + real.onVolume("")),
      real_(real),
      scratch_(scratch),
      root_(rootIn(scratch)) {
  std::error_code ignored;
  startedIn_ = fs::current_path(ignored).native();
}

bool StandIn::fileExistsAtPath(const std::string& path) const {
  const auto item = resolve(path, true);
  if (item && isStore(nameOf(path))) {
    copyStore(path, *item);
  }
  return item.has_value();
}

bool StandIn::isFolderAtPath(const std::string& path) const {
  const auto item = resolve(path, true);
  return item && real_.isFolderAtPath(*item);
}

bool StandIn::hasFolderType(const std::string& path) const {
  const auto item = resolve(path, false);
  return item && real_.hasFolderType(*item);
}

std::vector<std::string> StandIn::contentsOfDirectoryAtPath(const std::string& path) const {
  std::vector<std::string> left;
  if (const Folder* folder = listed(path)) {
    for (const std::string& name : *folder->names) {
      if (!folder->removed.contains(name)) {
        left.push_back(name);
      }
    }
  }
  return left;
}

bool StandIn::enumerateDeep(const std::string& path,
                            const std::function<bool(const std::string&)>& visit) const {
  const auto folder = resolve(path, true);
  return !folder ||
         real_.enumerateDeep(*folder, [&](const std::string& item) { return visit(root_ + item); });
}

std::optional<std::string> StandIn::contentsOfFile(const std::string& path,
                                                   std::size_t limit) const {
  const auto item = resolve(path, true);
  if (!item) {
    return std::nullopt;
  }
  if (isStore(nameOf(path))) {
    copyStore(path, *item);
  }
  const auto copy = outcome_.stores.find(*item);
  return real_.contentsOfFile(copy == outcome_.stores.end() ? *item : copy->second, limit);
}

bool StandIn::hasItemAtPath(const std::string& path) const {
  return resolve(path, false).has_value();
}

int StandIn::openForOverwriting(const std::string& path) const {
  const auto item = resolve(path, true);
  std::error_code ignored;
  const bool opens = item && (fs::is_regular_file(*item, ignored) || fs::is_fifo(*item, ignored)) &&
                     ::access(item->c_str(), R_OK | W_OK) == 0;
  return opens ? ::open("/dev/null", O_RDWR | O_CLOEXEC) : -1;
}

void StandIn::removeItemAtPath(const std::string& path) const {
  const auto item = resolve(path, false);
  if (!item || !mayRemove(*item)) {
    return;
  }
  folders_[folderOf(*item)].removed.insert(nameOf(*item));
  outcome_.removed.insert(*item);
  // Of all that was resolved, only the way to the item's own folder cannot lead through the item.
  if (last_ && last_->first != folderOf(realPath(path))) {
    last_.reset();
  }
}

bool StandIn::emptyFolderAtPath(const std::string& path,
                                const std::vector<std::string>& /*but*/) const {
  // What is in it goes with the folder, which is set aside next.
  const auto folder = resolve(path, false);
  return !folder || !real_.hasFolderType(*folder) || mayRemove(*folder + "/");
}

void StandIn::setAsideItemAtPath(const std::string& path, const std::string& /*newPath*/) const {
  removeItemAtPath(path);
}

std::string StandIn::realPath(const std::string& path) const {
  if (path.starts_with(root_ + "/")) {
    return path.substr(root_.size());
  }
  return path.starts_with('/') ? path : join(startedIn_, path);
}

/// The path without links of what the run finds at `path`; no value when it finds nothing there.
std::optional<std::string> StandIn::resolve(const std::string& path, bool followLast) const {
  if (path.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  const std::string real = realPath(path);
  const std::string folder = folderOf(real);
  if (!last_ || last_->first != folder) {
    auto found = walk("", folder, true);
    if (!found) {
      return std::nullopt;
    }
    last_.emplace(folder, *std::move(found));
  }
  return walk(last_->second, nameOf(real), followLast);
}

/// The same for `path` below `at`, a folder by its path without links; "" is the root.
std::optional<std::string> StandIn::walk(std::string at, std::string_view path,
                                         bool followLast) const {
  std::vector<std::string> parts;
  pushParts(parts, path);
  for (int links = 0; !parts.empty();) {
    const std::string part = std::exchange(parts.back(), "");
    parts.pop_back();
    if (part.empty() || part == ".") {
      continue;
    }
    if (part == "..") {
      at = folderOf(at);
      continue;
    }
    const std::string next = at + "/" + part;
    const auto folder = folders_.find(at);
    std::error_code error;
    const fs::file_status status = fs::symlink_status(next, error);
    if (!fs::exists(status) ||
        (folder != folders_.end() && folder->second.removed.contains(part))) {
      return std::nullopt;
    }
    if (!fs::is_symlink(status) || (parts.empty() && !followLast)) {
      at = next;
      continue;
    }
    const std::string target = fs::read_symlink(next, error).native();
    if (++links > kMostLinks || target.empty()) {
      return std::nullopt;
    }
    at = target.starts_with('/') ? "" : at;
    pushParts(parts, target);
  }
  return at;
}

/// The folder at `path`, listed; null when it is none or cannot be listed.
StandIn::Folder* StandIn::listed(const std::string& path) const {
  const auto item = resolve(path, true);
  if (!item || !real_.isFolderAtPath(*item)) {
    return nullptr;
  }
  Folder& folder = folders_[*item];
  if (!folder.names) {
    folder.names = real_.contentsOfDirectoryAtPath(*item);
    outcome_.lookedAt.insert(*item);
  }
  return &folder;
}

/// Copies the store at `item` to its place below the scratch folder, and makes it to be found where
/// the run looks for it as well, should that be another path.
void StandIn::copyStore(const std::string& path, const std::string& item) const {
  const std::string copy = root_ + item;
  if (outcome_.stores.emplace(item, copy).second) {
    scratch_.copyDatabase(item, copy);
  }
  const std::string asked = root_ + realPath(path);
  std::error_code error;
  if (asked != copy && !fs::is_symlink(asked, error)) {
    fs::create_directories(folderOf(asked), error);
    fs::create_symlink(copy, asked, error);
  }
}

}  // namespace tasselby
