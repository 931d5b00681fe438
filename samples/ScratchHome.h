#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "samples/TemporaryFolder.h"

namespace tasselby {

/// File names, or other texts, in an order that counts.
using Names = std::vector<std::string>;

/// The bytes of the file at `path`.
std::string bytesOf(const std::filesystem::path& path);

/// What is at `path`: the bytes of a file, "/" for a folder, the target of a link. No value when
/// nothing is.
std::optional<std::string> entryAt(const std::filesystem::path& path);

/// Makes the file `path`, and the folders above it.
void makeFile(const std::filesystem::path& path, const std::string& contents = "contents");

/// Every entry below `folder`, as `entryAt` answers it.
std::map<std::string, std::string> snapshotOf(const std::filesystem::path& folder);

/// Makes a Unix socket, by way of `folder`, whose path is short. Nobody can open one for writing,
/// the superuser included.
void makeSocket(const std::string& path, const std::string& folder);

/// A home folder `.../Users/anna` on a volume of its own in a temporary folder, removed at the end.
/// Paths are relative to the home folder.
class ScratchHome {
 public:
  ScratchHome();

  /// Each makes the folders above as needed and answers the home for the next call.
  ScratchHome& file(const std::string& path, const std::string& contents = "contents");
  ScratchHome& folder(const std::string& path);
  ScratchHome& link(const std::string& path, const std::string& target);
  ScratchHome& socket(const std::string& path);

  /// The full path of the home folder, of `path` in it, and of the volume's folder.
  std::string home() const { return (root() / "Users/anna").native(); }
  std::string path(const std::string& path) const { return home() + "/" + path; }
  std::string volume() const { return root().native(); }

  /// Whether there is an entry at `path`, a dangling link included.
  bool has(const std::string& path) const;

  /// The names in the folder at `path`, sorted; none when it is missing.
  Names list(const std::string& path) const;

  /// The bytes of the file at `path`.
  std::string contents(const std::string& path) const { return bytesOf(this->path(path)); }

  /// What there is on the volume.
  std::map<std::string, std::string> snapshot() const { return snapshotOf(root()); }

 private:
  const std::filesystem::path& root() const { return folder_.path(); }
  /// The full path of `path`, whose folders it makes.
  std::string made(const std::string& path) const;

  TemporaryFolder folder_;
};

}  // namespace tasselby
