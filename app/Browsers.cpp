#include "app/Browsers.h"

#include "platform/Paths.h"

namespace tasselby {

bool hasChromiumProfiles(std::string_view browser) {
  return browser == "Google Chrome" || browser == "Chromium";
}

bool isChromiumLike(std::string_view browser) {
  return hasChromiumProfiles(browser) || browser == "Opera";
}

std::string dataRoot(std::string_view browser) {
  if (browser == "Google Chrome") {
    return "~/Library/Application Support/Google/Chrome";
  }
  if (browser == "Chromium") {
    return "~/Library/Application Support/Chromium";
  }
  return browser == "Opera" ? "~/Library/Application Support/com.operasoftware.Opera" : "";
}

std::string cacheRoot(std::string_view browser) {
  if (browser == "Google Chrome") {
    return "~/Library/Caches/Google/Chrome";
  }
  if (browser == "Chromium") {
    return "~/Library/Caches/Chromium";
  }
  return browser == "Opera" ? "~/Library/Caches/com.operasoftware.Opera" : "";
}

std::vector<std::string> firefoxDatabases(const FileManager& files, const std::string& name) {
  std::vector<std::string> paths;
  const std::string profiles = files.expandTilde(kFirefoxProfiles);
  for (const std::string& entry : files.contentsOfDirectoryAtPath(profiles)) {
    const std::string profile = join(profiles, entry);
    std::string path = join(profile, name);
    if (files.hasFolderType(profile) && files.fileExistsAtPath(path)) {
      paths.push_back(std::move(path));
    }
  }
  return paths;
}

}  // namespace tasselby
