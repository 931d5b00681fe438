#include "cleaners/plugins/FlashSettings.h"

#include "platform/Paths.h"

namespace tasselby {

void visitFlashSettings(const FileManager& files, const std::string& folder,
                        const std::function<void(const std::string& host, const std::string& entry,
                                                 FlashEntry kind)>& visit) {
  for (const std::string& entry : files.contentsOfDirectoryAtPath(folder)) {
    if (!entry.starts_with("#")) {
      continue;
    }
    if (!entry.starts_with("##")) {
      visit(flashHost(entry.substr(1)), entry, FlashEntry::kHost);
      continue;
    }
    for (const std::string& name : files.contentsOfDirectoryAtPath(join(folder, entry))) {
      visit(flashHost(name), join(entry, name), FlashEntry::kInGroup);
    }
  }
}

}  // namespace tasselby
