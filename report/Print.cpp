#include "report/Print.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <unistd.h>

#include "platform/Text.h"

namespace tasselby {
namespace {

constexpr int kBold = 1;
constexpr int kDim = 2;
constexpr int kRed = 31;
constexpr int kGreen = 32;

constexpr int kGoesWidth = 20;
constexpr int kStaysWidth = 6;

/// `text` in one of the styles above: on a terminal, and where CLICOLOR_FORCE is set; never where
/// NO_COLOR is.
std::string styled(int style, const std::string& text) {
  const bool isWanted = std::getenv("NO_COLOR") == nullptr &&
                        (std::getenv("CLICOLOR_FORCE") != nullptr || ::isatty(STDOUT_FILENO) != 0);
  return isWanted ? "\033[" + std::to_string(style) + "m" + text + "\033[0m" : text;
}

/// `text` with "?" for what a terminal takes for more than text: each control character, those in
/// two bytes included, and each byte of what is no UTF-8.
std::string shown(std::string text) {
  const bool isText = isValidUtf8(text);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (isText && text[i] == '\xC2' && static_cast<unsigned char>(text[i + 1]) < 0xA0) {
      text.replace(i, 2, "?");
    } else if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !isText)) {
      text[i] = '?';
    }
  }
  return text;
}

/// What goes from `place`, such as "2 files, 1.5 kB".
std::string goesText(const Place& place) {
  std::uintmax_t bytes = 0;
  for (const Item& item : place.gone) {
    bytes += item.bytes;
  }
  std::ostringstream text;
  text << place.gone.size() << ' '
       << place.unit.substr(0, place.gone.size() == 1 ? place.unit.size() - 1 : place.unit.size());
  if (bytes != 0) {
    const bool isLarge = bytes >= 1000000;
    text << ", " << std::fixed << std::setprecision(1)
         << static_cast<double>(bytes) / (isLarge ? 1e6 : 1e3) << (isLarge ? " MB" : " kB");
  }
  return text.str();
}

std::string pathText(const RunResult& result, const std::string& path) {
  if (path.starts_with(result.home + "/")) {
    return shown(std::string("~").append(path, result.home.size()));
  }
  const bool isOnVolume = path.starts_with(result.volume + "/");
  return shown(isOnVolume ? path.substr(result.volume.size()) : path);
}

void printKept(std::ostream& out, const KeepList& kept) {
  std::size_t width = 0;
  for (const std::string& site : kept.sites()) {
    width = std::max(width, site.size());
  }
  out << (kept.sites().empty() ? "No site is kept.\n" : "Sites kept, each for a saved password:\n");
  for (const std::string& site : kept.sites()) {
    out << "  " << styled(kGreen, shown(site)) << std::string(width - site.size(), ' ') << "  "
        << shown(kept.sourceOf(site)) << '\n';
  }
}

void printPlace(std::ostream& out, const RunResult& result, const Place& place, bool items) {
  std::ostringstream goes;
  goes << std::left << std::setw(kGoesWidth) << goesText(place);
  out << "  " << styled(kRed, goes.str()) << std::right << std::setw(kStaysWidth) << place.stays
      << "  " << pathText(result, place.path) << '\n';
  for (const Item& item : place.gone) {
    if (items) {
      out << "      " << item.why << ": " << pathText(result, item.what)
          << (item.name.empty() ? "" : " ") << shown(item.name) << '\n';
    }
  }
}

}  // namespace

void printText(std::ostream& out, const RunResult& result, const std::string& title, bool items) {
  out << styled(kBold, shown(title)) << "\n\n";
  printKept(out, result.kept);
  out << '\n' << styled(kBold, "  goes                 stays") << '\n';
  std::size_t untouched = 0;
  for (const Place& place : result.places) {
    if (place.gone.empty()) {
      ++untouched;
    } else {
      printPlace(out, result, place, items);
    }
  }
  out << styled(kDim, "  nothing from " + std::to_string(untouched) + " other places") << "\n\n";
  if (result.endedAt.empty()) {
    out << "Report: " << shown(result.report) << '\n';
  } else {
    out << styled(kRed, "Ends hard at " + pathText(result, result.endedAt))
        << ": what would come after is not reached.\n";
  }
}

void printJson(std::ostream& out, const RunResult& result) {
  using Json = nlohmann::ordered_json;
  Json kept = Json::array();
  for (const std::string& site : result.kept.sites()) {
    kept.push_back({{"site", site}, {"from", result.kept.sourceOf(site)}});
  }
  Json places = Json::array();
  for (const Place& place : result.places) {
    Json items = Json::array();
    for (const Item& item : place.gone) {
      items.push_back(
          {{"what", item.what}, {"name", item.name}, {"why", item.why}, {"bytes", item.bytes}});
    }
    places.push_back(
        {{"path", place.path}, {"unit", place.unit}, {"stays", place.stays}, {"items", items}});
  }
  const Json json = {
      {"browser", result.browser}, {"home", result.home},     {"kept", kept},
      {"places", places},          {"report", result.report}, {"endsHardAt", result.endedAt}};
  out << json.dump(1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace tasselby
