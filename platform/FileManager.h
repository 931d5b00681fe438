#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tasselby {

/// The file system. One implementation serves every POSIX system.
///
/// Paths are bytes, and what they name need not exist. Nothing here throws, logs or follows a link
/// unless it says so. A path with a NUL byte in it names nothing.
class FileManager {
 public:
  /// Files as the owner of `home` sees them. The volume is what stands before the last "/Users/"
  /// in `home`, else the root. An empty `home` is none: paths below it name nothing.
  explicit FileManager(std::string home);

  /// The same with the volume named; "" for the root.
  FileManager(std::string home, std::string volume);

  /// `path` with a leading "~" or "~/" replaced by the home folder; any other path as it is.
  std::string expandTilde(const std::string& path) const;

  /// The absolute Mac path `path` on the volume that the home folder is on.
  std::string onVolume(const std::string& path) const;

  /// Whether something is at `path`, links followed: a dangling link does not exist.
  static bool fileExistsAtPath(const std::string& path);

  /// Whether a folder is at `path`, links followed.
  static bool isFolderAtPath(const std::string& path);

  /// Whether the item at `path` itself has the file type folder; a link to one has not.
  static bool hasFolderType(const std::string& path);

  /// The names in the folder at `path`, in the order the system lists them, "." and ".." left out.
  /// Links are followed. Empty when it is no folder or cannot be read to its end.
  static std::vector<std::string> contentsOfDirectoryAtPath(const std::string& path);

  /// Whether the folder at `path` has no entries, hidden ones included, or cannot be listed. Looks
  /// at one entry only.
  static bool listsAsEmpty(const std::string& path);

  /// Calls `visit` with the path of each item below the folder at `path`, at every depth and
  /// hidden ones included, until it answers false or the first error. A link
  /// at `path` is followed; links to folders inside are visited and not entered. Answers whether no
  /// visit answered false.
  static bool enumerateDeep(const std::string& path,
                            const std::function<bool(const std::string&)>& visit);

  /// The bytes of the regular file at `path`, links followed. No value when it is missing, cannot
  /// be read, is no regular file or has more than `limit` bytes. Never waits for a writer.
  static std::optional<std::string> contentsOfFile(const std::string& path, std::size_t limit);

  /// The whole text of the regular file at `path`, links followed. No value when `contentsOfFile`
  /// has none within 64 MiB, or the bytes are no UTF-8.
  static std::optional<std::string> textOfFile(const std::string& path);

  /// Removes the file, link or folder with its contents at `path`. A link inside or at `path` goes
  /// itself, never what it names, not even when it takes a folder's place meanwhile. What cannot be
  /// removed stays, everything else goes, and neither is reported.
  static void removeItemAtPath(const std::string& path);

  /// Lets this process hold as many files open as the system allows it: a removal holds one for
  /// each level of a tree.
  static void raiseOpenFileLimit();

 private:
  std::string home_;
  std::string volume_;
};

}  // namespace tasselby
