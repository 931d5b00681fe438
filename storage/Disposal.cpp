#include "storage/Disposal.h"

#include "storage/SecureDelete.h"

namespace tasselby {

void dispose(const FileManager& files, const std::string& path, bool secure) {
  dispose(files, path, path, secure);
}

void dispose(const FileManager& files, const std::string& wipePath, const std::string& removalPath,
             bool secure) {
  if (!secure || SecureDelete::wipe(files, wipePath)) {
    files.removeItemAtPath(removalPath);
  }
}

}  // namespace tasselby
