#include "app/Browsers.h"

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

}  // namespace tasselby
