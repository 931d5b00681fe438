#include "report/Print.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <string_view>
#include <unistd.h>

#include "platform/Text.h"

namespace tasselby {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kBold = "\033[1m";
constexpr std::string_view kRed = "\033[31m";
constexpr std::string_view kGreen = "\033[32m";
constexpr std::string_view kDim = "\033[2m";
constexpr std::string_view kPlain = "\033[0m";

constexpr int kGoesWidth = 17;
constexpr int kStaysWidth = 7;

/// `text` without what a terminal takes for more than text.
std::string shown(std::string_view text) {
  std::ostringstream safe;
  const bool isText = isValidUtf8(text);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    // The second half of the control characters is C2 80 to C2 9F.
    const bool isSecondHalf = i > 0 && text[i - 1] == '\xC2' && byte >= 0x80 && byte < 0xA0;
    if (byte < 0x20 || byte == 0x7F || isSecondHalf || (byte >= 0x80 && !isText)) {
      safe << "\\x" << std::hex << std::setw(2) << std::setfill('0') << int{byte};
    } else {
      safe << text[i];
    }
  }
  return safe.str();
}

std::string sizeText(std::uintmax_t bytes) {
  constexpr std::array<const char*, 5> kUnits = {"bytes", "kB", "MB", "GB", "TB"};
  std::size_t unit = 0;
  auto amount = static_cast<double>(bytes);
  for (; amount >= 999.95 && unit + 1 < kUnits.size(); ++unit) {
    amount /= 1000;
  }
  std::ostringstream text;
  text << std::fixed << std::setprecision(unit == 0 ? 0 : 1) << amount << ' ' << kUnits.at(unit);
  return text.str();
}

std::string countText(std::size_t count, std::string unit) {
  if (count == 1) {
    unit.pop_back();
  }
  return std::to_string(count) + ' ' + unit;
}

class TextPrinter {
 public:
  TextPrinter(std::ostream& out, const RunResult& result, const PrintOptions& options)
      : out_(out), result_(result), options_(options) {}

  void print() {
    out_ << style(kBold) << shown(options_.title) << style(kPlain) << "\n\n";
    printKept();
    printPlaces();
    out_ << style(kDim) << "Untouched: " << countText(result_.changes.untouched, "other places")
         << '.' << style(kPlain) << '\n';
    if (!result_.endedAt.empty()) {
      out_ << style(kRed) << "It ends hard at " << inHome(result_.endedAt) << style(kPlain)
           << "; what would come after is not reached.\n";
    } else {
      out_ << "Report: " << shown(result_.report) << '\n';
    }
  }

 private:
  std::string_view style(std::string_view escape) const {
    return options_.color ? escape : std::string_view();
  }

  std::string inHome(const std::string& path) const {
    if (path.starts_with(result_.home + "/")) {
      return shown(std::string("~").append(path, result_.home.size()));
    }
    const bool isOnVolume = path.starts_with(result_.volume + "/");
    return shown(isOnVolume ? path.substr(result_.volume.size()) : path);
  }

  void printKept() {
    out_ << (result_.kept.empty() ? "No site is kept.\n" : "Kept sites, and the saved password:\n");
    std::size_t width = 0;
    for (const KeptSite& site : result_.kept) {
      width = std::max(width, site.site.size());
    }
    for (const KeptSite& site : result_.kept) {
      out_ << "  " << style(kGreen) << padded(shown(site.site), width) << style(kPlain) << "  "
           << shown(site.host) << style(kDim) << " in " << shown(site.source) << style(kPlain)
           << '\n';
    }
    out_ << '\n';
  }

  static std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
  }

  void printPlaces() {
    if (result_.changes.places.empty()) {
      out_ << "Nothing goes.\n\n";
      return;
    }
    out_ << style(kBold) << "  " << std::left << std::setw(kGoesWidth) << "Goes" << std::right
         << std::setw(kStaysWidth) << "Stays" << style(kPlain) << '\n';
    for (const Place& place : result_.changes.places) {
      std::string goes = countText(place.gone.size(), place.unit);
      goes += place.unit == "files" ? ", " + sizeText(place.bytes) : "";
      out_ << "  " << style(kRed) << std::left << std::setw(kGoesWidth) << goes << style(kPlain)
           << std::right << std::setw(kStaysWidth) << place.stays << "  " << inHome(place.path)
           << '\n';
      for (const Item& item : place.gone) {
        printItem(place, item);
      }
    }
    out_ << '\n';
  }

  void printItem(const Place& place, const Item& item) {
    if (!options_.items) {
      return;
    }
    out_ << "      " << std::left << std::setw(10) << item.why << "  ";
    if (item.path.empty()) {
      out_ << shown(item.host) << (item.name.empty() ? "" : "  ") << shown(item.name) << '\n';
    } else {
      out_ << shown(item.path.substr(place.path.size() + 1)) << ", " << sizeText(item.bytes)
           << '\n';
    }
  }

  std::ostream& out_;
  const RunResult& result_;
  const PrintOptions& options_;
};

Json jsonOf(const Item& item) {
  Json json = {{"why", item.why}};
  if (item.path.empty()) {
    json["host"] = item.host;
    json["name"] = item.name;
  } else {
    json["path"] = item.path;
    json["bytes"] = item.bytes;
  }
  return json;
}

}  // namespace

bool wantsColor() {
  return std::getenv("NO_COLOR") == nullptr &&
         (std::getenv("CLICOLOR_FORCE") != nullptr || ::isatty(STDOUT_FILENO) != 0);
}

void printText(std::ostream& out, const RunResult& result, const PrintOptions& options) {
  TextPrinter(out, result, options).print();
}

void printJson(std::ostream& out, const RunResult& result) {
  Json json = {{"browser", result.browser},
               {"home", result.home},
               {"kept", Json::array()},
               {"places", Json::array()},
               {"untouched", result.changes.untouched}};
  for (const KeptSite& site : result.kept) {
    json["kept"].push_back({{"site", site.site}, {"host", site.host}, {"in", site.source}});
  }
  for (const Place& place : result.changes.places) {
    Json items = Json::array();
    std::ranges::transform(place.gone, std::back_inserter(items), jsonOf);
    json["places"].push_back({{"path", place.path},
                              {"unit", place.unit},
                              {"goes", place.gone.size()},
                              {"bytes", place.bytes},
                              {"stays", place.stays},
                              {"items", std::move(items)}});
  }
  json["report"] = result.report;
  json["endsHardAt"] = result.endedAt;
  out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace tasselby
