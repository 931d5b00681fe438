// Which names in a browser's web storage have to go: each is turned into a site, and stays when the
// keep list has that site.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/Text.h"

namespace tasselby {
namespace {

constexpr std::string_view kLocalStorageEnding = ".localstorage";
constexpr std::string_view kChromeExtension = "chrome-extension_";
constexpr std::string_view kSafariExtension = "safari-extension_";
constexpr std::string_view kWww = "www.";

/// The host in the name of a web origin's file, such as "http_www.example.com_0.localstorage".
/// Without a second "_" it is everything behind the first, and a "www." stays.
std::string_view hostOfFileName(std::string_view name) {
  std::string_view host = name.substr(name.find('_') + 1);
  const std::size_t end = host.find('_');
  if (end == std::string_view::npos) {
    return host;
  }
  host = host.substr(0, end);
  return host.starts_with(kWww) ? host.substr(kWww.size()) : host;
}

/// The host in the address that a scope may carry behind "//", less its "www."; no value for one
/// without "www.", and for one whose percent escapes are no text.
std::optional<std::string> hostOfAddress(std::string_view text) {
  std::string address(text.substr(text.find("//") + 2));
  for (char& c : address) {
    c = c == '+' ? ' ' : c;
  }
  const std::optional<std::string> decoded = percentDecoded(address);
  if (!decoded) {
    return std::nullopt;
  }
  const std::string_view host = std::string_view(*decoded).substr(0, decoded->find('/'));
  if (!host.starts_with(kWww)) {
    return std::nullopt;
  }
  return std::string(host.substr(kWww.size()));
}

/// The host of a Mozilla scope: written backwards, up to the first ".:" at `end`.
std::string hostOfScope(std::string_view scope, std::size_t end) {
  std::string host = reversedByUnits(scope.substr(0, end));
  if (host.starts_with(kWww)) {
    host.erase(0, kWww.size());
  }
  if (host.find("//") != std::string::npos) {
    return hostOfAddress(host).value_or(host);
  }
  return host;
}

}  // namespace

std::vector<std::string> WorkerAppDelegate::databaseArray_keep(
    const std::vector<std::string>& origins, const KeepList& keepList) {
  std::vector<std::string> chosen;
  for (const std::string& origin : origins) {
    if (origin.starts_with(kChromeExtension) || origin.starts_with(kSafariExtension)) {
      continue;
    }
    // Deliberate: the whole identifier, scheme and port included, and not the host in it. So no
    // web origin's database is ever kept.
    if (!keepList.contains(WorkerExtras::siteWithDomainName(origin))) {
      chosen.push_back(origin);
    }
  }
  return chosen;
}

std::vector<std::string> WorkerAppDelegate::localStorageArray_browser_keep(
    const std::vector<std::string>& names, const std::string& browser, const KeepList& keepList) {
  std::vector<std::string> chosen;
  for (const std::string& name : names) {
    if (!name.ends_with(kLocalStorageEnding)) {
      continue;
    }
    // Deliberate: "Chrome" is no name of a browser here, so that the extensions of Google Chrome,
    // and of Opera, go and those of Chromium stay.
    if ((browser == "Safari" && name.starts_with(kSafariExtension)) ||
        ((browser == "Chromium" || browser == "Chrome") && name.starts_with(kChromeExtension))) {
      continue;
    }
    const bool isWebOrigin = name.starts_with("http") && name.find('_') != std::string::npos;
    const std::string_view host =
        isWebOrigin ? hostOfFileName(name)
                    : std::string_view(name).substr(0, name.size() - kLocalStorageEnding.size());
    if (!keepList.contains(WorkerExtras::siteWithDomainName(std::string(host)))) {
      chosen.push_back(name);
    }
  }
  return chosen;
}

std::vector<std::string> WorkerAppDelegate::mozillaLocalStorage_keep(
    const std::vector<std::string>& scopes, const KeepList& keepList) {
  std::vector<std::string> chosen;
  for (const std::string& scope : scopes) {
    const std::size_t end = scope.find(".:");
    // Deliberate: what is no scope stays, for it names no site that could be told not to be kept.
    if (end != std::string::npos &&
        !keepList.contains(WorkerExtras::siteWithDomainName(hostOfScope(scope, end)))) {
      chosen.push_back(scope);
    }
  }
  return chosen;
}

}  // namespace tasselby
