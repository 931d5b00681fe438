#pragma once

#include <filesystem>

namespace tasselby {

/// A new empty folder, removed with all that is in it at the end. It lies in the folder named, if
/// any, or in memory where the system has room there, else in $TMPDIR, else in /tmp; where none of
/// them takes it, the process says so and ends with status 1.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const char* parent = nullptr);
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  /// Absolute and without symbolic links.
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tasselby
