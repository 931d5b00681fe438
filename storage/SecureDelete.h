#pragma once

#include <cstdint>
#include <string>

#include "platform/FileManager.h"

namespace tasselby {

/// Overwrites files in place, so that what they held is not left readable on the disk. Removes
/// nothing: name, size and place of a file stay as they were. What a drive keeps elsewhere, as
/// solid-state drives do, is out of reach.
class SecureDelete {
 public:
  SecureDelete() = delete;

  /// Overwrites the file at `path` three times. A folder is walked and nothing in it is written.
  /// Links are followed. Answers true for a folder and where nothing exists; false as soon as a
  /// pass fails.
  static bool wipe(const FileManager& files, const std::string& path);

  /// Despite its name, overwrites the one file at `path` three times, as `wipe` does for a file.
  static bool wipeContentsofDir(const FileManager& files, const std::string& path);

  /// One pass over the file at `path`: every byte 0x55 in phase 1, 0xAA in phase 2, random and
  /// never 0xFF in phase 3. The low 32 bits of the file's size are covered. Answers false when the
  /// file cannot be opened for writing, for another phase, and when closing fails.
  static bool wipe_phase(const FileManager& files, const std::string& path, std::int32_t phase);
};

}  // namespace tasselby
