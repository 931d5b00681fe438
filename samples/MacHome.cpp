#include "samples/MacHome.h"

#include <algorithm>
#include <map>
#include <random>
#include <utility>

#include "samples/PlainSqlite.h"
#include "samples/SampleStores.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

const std::vector<SampleSite> kBaseSites = {
    {"www.example.com", true},     {"shop.example.co.uk", true},
    {"www.my.bank.example", true}, {"www.adverts.example", false},
    {"news.example.org", false},   {"forum.example.de", false},
    {"10.0.0.7", false},
};

std::vector<SampleSite> makeSites(int scale) {
  std::vector<SampleSite> sites = kBaseSites;
  std::mt19937 random(1);
  for (int i = 1; i < scale; ++i) {
    const std::string number = std::to_string(i);
    const std::string word(1 + random() % 8, static_cast<char>('a' + random() % 26));
    sites.push_back({"www." + word + number + ".example.net", false});
    sites.push_back({word + number + ".example.info", false});
    sites.push_back({"cdn." + word + ".example" + number + ".org", false});
  }
  return sites;
}

}  // namespace

MacHome::MacHome(fs::path volume, int scale)
    : volume_(std::move(volume)), sites_(makeSites(scale)) {
  addSettings(*this);
  if (scale > 0) {
    addStores(*this);
  }
}

MacHome MacHome::copyTo(const fs::path& volume) const {
  fs::copy(volume_, volume, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  MacHome copy = *this;
  copy.volume_ = volume;
  return copy;
}

bool SampleItem::goesFor(const std::string& browser, bool removeAll, bool secure) const {
  const auto number = std::ranges::find(kEveryBrowser, browser) - kEveryBrowser.begin();
  const char letter = "SWGCKFO"[number];
  return letter != 0 && (is('*') || is(letter)) && !is(removeAll ? 'e' : 'k') &&
         !(secure && (is('s') || is('w')));
}

void MacHome::writeFile(const std::string& path, const std::string& contents) const {
  makeFile(volume_ / (path.starts_with("/") ? path.substr(1) : "Users/anna/" + path), contents);
}

std::vector<std::optional<std::string>> MacHome::contents() const {
  std::map<std::string, Connection> connections;
  std::vector<std::optional<std::string>> contents;
  for (const SampleItem& item : items_) {
    std::optional<std::string> found;
    if (!item.key.starts_with("SELECT")) {
      found = entryAt(path(item.path));
    }
    if (found && !item.key.empty()) {
      // A cookie's domain and name stand one behind the other, a NUL behind each.
      std::string texts = item.key + '\0';
      texts[texts.find('|')] = '\0';
      found = found->find(texts) != std::string::npos ? std::optional(item.key) : std::nullopt;
    } else if (!item.key.empty() && fs::exists(path(item.path))) {
      if (!connections.contains(item.path)) {
        connections.emplace(item.path, plainConnection(path(item.path)));
      }
      const Names rows = plainly(connections.at(item.path), item.key);
      found = rows.empty() ? std::nullopt : std::optional(rows.front());
    }
    contents.push_back(found);
  }
  return contents;
}

}  // namespace tasselby
