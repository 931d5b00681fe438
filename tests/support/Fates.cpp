#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

/// The folders that stay when all that was in them has gone. Any other goes with it.
const std::string kStayEmpty =
    "/Empty/Flash Player/Metadata/Shockwave Flash/##g/##group/.T/.hidden/g/com.apple.Safari/"
    "com.apple.WebKit.WebContent+com.apple.Safari/com.apple.WebProcess+com.apple.Safari/";

bool staysEmpty(const std::string& folder) {
  const std::string name = "/" + fs::path(folder).filename().native() + "/";
  // With a store that names no group the groups' own folder goes.
  return kStayEmpty.find(name) != std::string::npos && !folder.ends_with("/3/g");
}

}  // namespace

Fates::Fates(const MacHome& home) : home_(home), entries_(snapshotOf(home.volume())) {
  fs::create_directory(witnesses_);
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const fs::path path = home.path(home.items()[i].path);
    if (home.items()[i].key.empty() && fs::is_regular_file(fs::symlink_status(path))) {
      fs::create_hard_link(path, witnesses_ + "/" + std::to_string(i));
    }
  }
}

void Fates::expectMet(const std::string& browser, bool removeAll, bool secure,
                      const Names& foreign) const {
  const auto isForeign = [&foreign](const auto& path) {
    return std::ranges::any_of(foreign,
                               [&](const auto& part) { return path.find(part) != path.npos; });
  };
  const auto witnesses = snapshotOf(witnesses_);
  const auto items = home_.contents();
  std::set<std::string> going;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const SampleItem& item = home_.items()[i];
    const std::string label = item.path + " " + item.key;
    const bool goes = item.goesFor(browser, removeAll, secure) && !isForeign(item.path);
    EXPECT_TRUE(items_[i]) << label;
    EXPECT_EQ(items[i], goes ? std::nullopt : items_[i]) << label;
    const auto bytes = witnesses.find(std::to_string(i));
    if (bytes != witnesses.end()) {
      const bool wiped = bytes->second.size() == items_[i]->size() && bytes->second != *items_[i] &&
                         bytes->second.find('\xFF') == std::string::npos;
      EXPECT_EQ(wiped, secure && goes && item.is('a')) << label;
    }
    if (goes) {
      going.insert(item.path);
    }
  }
  const auto entries = snapshotOf(home_.volume());
  for (const auto& [path, contents] : entries_) {
    const auto now = entries.find(path);
    EXPECT_TRUE(going.contains(path) || (now == entries.end() ? contents == "/" && !staysEmpty(path)
                                                              : now->second == contents))
        << path << " has changed or gone";
  }
  for (const auto& [path, contents] : entries) {
    const auto next = entries.upper_bound(path + "/");
    EXPECT_TRUE(isForeign(path) ||
                (entries_.contains(path) &&
                 (contents != "/" || staysEmpty(path) ||
                  (next != entries.end() && next->first.starts_with(path + "/")))))
        << path << " is new or empty";
  }
}

}  // namespace tasselby
