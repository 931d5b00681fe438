// By descriptors, as a path could lead elsewhere from one call to the next.

#include "platform/RemoveTree.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tasselby {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

/// A folder that is being emptied. Its entries are listed before the first of them goes: some
/// systems lose their place in a listing that shrinks.
struct Level {
  Folder folder;
  /// Its name in the folder before.
  std::string name;
  std::vector<std::string> entries;
};

/// The folder `name` in the one behind `parent`; null when it is none, a link to one included.
Folder openFolder(int parent, const char* name) {
  const int descriptor =
      ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    return nullptr;
  }
  Folder folder(::fdopendir(descriptor));
  if (!folder) {
    ::close(descriptor);
  }
  return folder;
}

/// Removes the entry unless it is a folder. Most are none, and asking first costs a fifth more.
bool unlinked(int parent, const char* name) {
#ifndef __linux__
  // A superuser's call may tear a folder out of the tree with all that is in it.
  struct stat status = {};
  if (::geteuid() == 0 && ::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
      S_ISDIR(status.st_mode)) {
    return false;
  }
#endif
  return ::unlinkat(parent, name, 0) == 0 || errno == ENOENT;
}

/// The folder's entries but those named in `but`.
Level levelOf(Folder folder, std::string name, const std::vector<std::string>& but) {
  Level level{std::move(folder), std::move(name), {}};
  while (const dirent* entry = ::readdir(level.folder.get())) {
    const std::string_view entryName = entry->d_name;
    if (entryName != "." && entryName != ".." && std::ranges::find(but, entryName) == but.end()) {
      level.entries.emplace_back(entryName);
    }
  }
  return level;
}

/// Empties the folder, however deep it is: its levels are in a list, and not on the stack.
void empty(Level root) {
  std::vector<Level> levels;
  levels.push_back(std::move(root));
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.entries.empty()) {
      const std::string name = std::move(level.name);
      levels.pop_back();
      if (!levels.empty()) {
        ::unlinkat(::dirfd(levels.back().folder.get()), name.c_str(), AT_REMOVEDIR);
      }
      continue;
    }
    const int descriptor = ::dirfd(level.folder.get());
    std::string name = std::move(level.entries.back());
    level.entries.pop_back();
    if (unlinked(descriptor, name.c_str())) {
      continue;
    }
    if (Folder folder = openFolder(descriptor, name.c_str())) {
      levels.push_back(levelOf(std::move(folder), std::move(name), {}));
    } else {
      // One that may not be read goes if it is empty.
      ::unlinkat(descriptor, name.c_str(), AT_REMOVEDIR);
    }
  }
}

}  // namespace

void removeTree(const std::string& path) {
  if (!unlinked(AT_FDCWD, path.c_str())) {
    emptyFolder(path, {});
    ::unlinkat(AT_FDCWD, path.c_str(), AT_REMOVEDIR);
  }
}

bool emptyFolder(const std::string& path, const std::vector<std::string>& but) {
  Folder folder = openFolder(AT_FDCWD, path.c_str());
  if (!folder) {
    return errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
  }
  empty(levelOf(std::move(folder), "", but));
  folder = openFolder(AT_FDCWD, path.c_str());
  return !folder || levelOf(std::move(folder), "", but).entries.empty();
}

}  // namespace tasselby
