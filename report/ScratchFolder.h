#pragma once

#include <exception>
#include <string>

namespace tasselby {

/// There is no scratch folder, or no room left in it.
class ScratchError : public std::exception {
 public:
  const char* what() const noexcept override { return "no room for a scratch folder"; }
};

/// A folder of its own below the folder for temporary files, removed with all that is in it.
class ScratchFolder {
 public:
  /// Makes the folder; throws `ScratchError` when that fails.
  ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder();

  /// The folder's path, without links in it.
  const std::string& path() const { return path_; }

  /// Makes `to`, a path below the folder, a copy of the file `from`, with what SQLite keeps beside
  /// it: clones that share the bytes where the file system can. It can be written if `from` could
  /// be. What cannot be read or is no regular file is not copied. Throws `ScratchError` without
  /// room for the copy and a journal of it.
  void copyStore(const std::string& from, const std::string& to) const;

 private:
  void copy(const std::string& from, const std::string& to) const;

  std::string path_;
};

}  // namespace tasselby
