#pragma once

#include <string>

#include "platform/FileManager.h"

namespace tasselby {

/// How every cleaner removes a file or a folder with its contents. With `secure`, `path` is wiped
/// first and removed only if that answers yes; without, it is removed. A missing path and errors
/// are ignored.
void dispose(const FileManager& files, const std::string& path, bool secure);

/// The same where what is wiped and what is removed are named by different paths.
void dispose(const FileManager& files, const std::string& wipePath, const std::string& removalPath,
             bool secure);

}  // namespace tasselby
