#pragma once

#include <string>

namespace tasselby {

/// A folder of its own below the folder for temporary files.
///
/// A process of its own removes it with all that is in it, once this one lets go of it, by whatever
/// end it comes to. On a terminal it shows meanwhile, every second, how long that takes.
class ScratchFolder {
 public:
  /// Makes the folder; throws `std::runtime_error` when that fails.
  ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  /// Returns when the folder is gone.
  ~ScratchFolder();

  /// The folder's path, without links in it.
  const std::string& path() const { return path_; }

  /// Makes `to`, a path below the folder, a copy of the file `from`, with what SQLite keeps beside
  /// it: clones that share the bytes where the file system can. It can be written if `from` could
  /// be. What cannot be read or is no regular file is not copied. Throws `std::runtime_error`
  /// without room for the copy and a journal of it.
  void copyStore(const std::string& from, const std::string& to) const;

 private:
  void copy(const std::string& from, const std::string& to) const;

  std::string path_;
  /// Open in this process alone.
  int held_;
};

}  // namespace tasselby
