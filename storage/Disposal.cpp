#include "storage/Disposal.h"

#include "platform/FileManager.h"
#include "storage/SecureDelete.h"

namespace tasselby {

void dispose(const std::string& path, bool secure) {
  dispose(path, path, secure);
}

void dispose(const std::string& wipePath, const std::string& removalPath, bool secure) {
  if (!secure || SecureDelete::wipe(wipePath)) {
    FileManager::removeItemAtPath(removalPath);
  }
}

}  // namespace tasselby
