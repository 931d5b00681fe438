#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tasselby {

/// A larger file is none that a browser, a plug-in or the system wrote of those that are read
/// whole.
inline constexpr std::size_t kFileLimit = std::size_t{64} << 20;

/// The file system. One implementation serves every POSIX system; another may stand in for it, and
/// whoever is handed a file manager asks that one for everything.
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

  virtual ~FileManager() = default;

  /// `path` with a leading "~" or "~/" replaced by the home folder; any other path as it is.
  virtual std::string expandTilde(const std::string& path) const;

  /// The absolute Mac path `path` on the volume that the home folder is on.
  virtual std::string onVolume(const std::string& path) const;

  /// Whether something is at `path`, links followed: a dangling link does not exist.
  virtual bool fileExistsAtPath(const std::string& path) const;

  /// Whether a folder is at `path`, links followed.
  virtual bool isFolderAtPath(const std::string& path) const;

  /// Whether the item at `path` itself has the file type folder; a link to one has not.
  virtual bool hasFolderType(const std::string& path) const;

  /// The names in the folder at `path`, in the order the system lists them, "." and ".." left out.
  /// Links are followed. Empty when it is no folder or cannot be read to its end.
  virtual std::vector<std::string> contentsOfDirectoryAtPath(const std::string& path) const;

  /// Calls `visit` with the path of each item below the folder at `path`, at every depth and
  /// hidden ones included, until it answers false or the first error. A link
  /// at `path` is followed; links to folders inside are visited and not entered. Answers whether no
  /// visit answered false.
  virtual bool enumerateDeep(const std::string& path,
                             const std::function<bool(const std::string&)>& visit) const;

  /// The bytes of the regular file at `path`, links followed. No value when it is missing, cannot
  /// be read, is no regular file or has more than `limit` bytes. Never waits for a writer.
  virtual std::optional<std::string> contentsOfFile(const std::string& path,
                                                    std::size_t limit) const;

  /// The whole text of the regular file at `path`, links followed. No value when `contentsOfFile`
  /// has none within `kFileLimit`, or the bytes are no UTF-8.
  virtual std::optional<std::string> textOfFile(const std::string& path) const;

  /// Whether something is at `path` itself, a dangling link included.
  virtual bool hasItemAtPath(const std::string& path) const;

  /// A descriptor to read and write the file at `path`, links followed; below 0 when it cannot be
  /// opened so. The caller closes it.
  virtual int openForOverwriting(const std::string& path) const;

  /// Removes the file, link or folder with its contents at `path`. A link inside or at `path` goes
  /// itself, never what it names, not even when it takes a folder's place meanwhile. What cannot be
  /// removed stays, everything else goes, and neither is reported.
  virtual void removeItemAtPath(const std::string& path) const;

  /// Removes everything in the folder at `path` but the entries named in `but`, in the same way.
  /// Answers whether nothing else is left; true also for what is no folder or is not there.
  virtual bool emptyFolderAtPath(const std::string& path,
                                 const std::vector<std::string>& but) const;

  /// Renames what is at `path`, a link itself, to `newPath`, of the same folder and soon to be
  /// removed. A failure leaves it and is not reported.
  virtual void setAsideItemAtPath(const std::string& path, const std::string& newPath) const;

 protected:
  /// The path by which the system finds what is at `path`, `followLinks` telling whether links at
  /// its end are followed; empty when that is nothing. All of the above but the first two go by it.
  virtual std::string located(const std::string& path, bool followLinks) const;

 private:
  std::string home_;
  std::string volume_;
};

}  // namespace tasselby
