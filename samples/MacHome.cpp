#include "samples/MacHome.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <sqlite3.h>
#include <utility>

#include "samples/SampleStores.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

const std::vector<SampleSite> kBaseSites = {
    {"www.example.com", true},     {"shop.example.co.uk", true},
    {"www.my.bank.example", true}, {"www.adverts.example", false},
    {"news.example.org", false},   {"forum.example.de", false},
    {"10.0.0.7", false},
};

std::vector<SampleSite> makeSites(std::uint32_t seed, int scale) {
  std::vector<SampleSite> sites = kBaseSites;
  std::mt19937 random(seed);
  for (int i = 1; i < scale; ++i) {
    const std::string number = std::to_string(i);
    const std::string word(1 + random() % 8, static_cast<char>('a' + random() % 26));
    sites.push_back({"www." + word + number + ".example.net", false});
    sites.push_back({word + number + ".example.info", false});
    sites.push_back({"cdn." + word + ".example" + number + ".org", false});
  }
  return sites;
}

std::optional<std::string> fileContents(const std::string& path) {
  const fs::file_status status = fs::symlink_status(path);
  if (fs::is_symlink(status)) {
    return fs::read_symlink(path).native();
  }
  if (!fs::is_regular_file(status)) {
    return fs::exists(status) ? std::optional<std::string>("") : std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

Connection connectionTo(const std::string& path) {
  sqlite3* connection = nullptr;
  sqlite3_open(path.c_str(), &connection);
  return {connection, &sqlite3_close};
}

/// What `sql` answers: the values of all rows, each on a line.
std::string answerOf(const Connection& connection, const std::string& sql) {
  std::string lines;
  const auto append = [](void* text, int count, char** values, char** /*names*/) {
    for (int i = 0; i < count; ++i) {
      static_cast<std::string*>(text)->append(values[i] != nullptr ? values[i] : "NULL") += '\n';
    }
    return 0;
  };
  sqlite3_exec(connection.get(), sql.c_str(), append, &lines, nullptr);
  return lines;
}

}  // namespace

MacHome::MacHome(fs::path volume, std::uint32_t seed, int scale)
    : volume_(std::move(volume)), random_(seed), sites_(makeSites(seed, scale)) {
  addPreferences(*this);
  addPasswords(*this);
  addProfileLists(*this);
  addCookies(*this);
  addWebStorage(*this);
  addPlugIns(*this);
  addCaches(*this);
}

MacHome MacHome::copyTo(const fs::path& volume) const {
  fs::copy(volume_, volume, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  MacHome copy = *this;
  copy.volume_ = volume;
  return copy;
}

std::string MacHome::onVolume(const std::string& path) const {
  return path.starts_with("/") ? path.substr(1) : "Users/anna/" + path;
}

bool SampleItem::goesFor(const std::string& browser, bool removeAll) const {
  return (!kept || removeAll) && std::ranges::count(goneFor, browser) != 0;
}

void MacHome::addFile(const std::string& store, const std::string& path, const Browsers& goneFor,
                      bool kept, std::string contents) {
  if (contents.empty()) {
    std::minstd_rand random(++random_);
    contents.resize(200 + random() % 3000);
    for (char& byte : contents) {
      byte = static_cast<char>(random());
    }
  }
  writeFile(path, contents);
  addItem(store, path, "", goneFor, kept);
}

void MacHome::addItem(const std::string& store, const std::string& path, const std::string& key,
                      const Browsers& goneFor, bool kept) {
  items_.push_back({store, onVolume(path), key, goneFor, kept});
}

void MacHome::writeFile(const std::string& path, const std::string& contents) const {
  const fs::path full = volume_ / onVolume(path);
  fs::create_directories(full.parent_path());
  std::ofstream(full, std::ios::binary) << contents;
}

void MacHome::writeDatabase(const std::string& path, const std::vector<std::string>& sql) const {
  const fs::path full = volume_ / onVolume(path);
  fs::create_directories(full.parent_path());
  // A page size and the write-ahead log can only be set outside of a transaction.
  std::string settings;
  std::string rows;
  for (const std::string& text : sql) {
    (text.starts_with("PRAGMA") ? settings : rows) += text;
  }
  answerOf(connectionTo(full.native()), settings + "BEGIN;" + rows + "COMMIT;");
}

std::vector<std::optional<std::string>> MacHome::contents() const {
  std::map<std::string, Connection> connections;
  std::vector<std::optional<std::string>> contents;
  for (const SampleItem& item : items_) {
    std::optional<std::string> found = fileContents(path(item.path));
    if (found && item.path.ends_with(".binarycookies")) {
      // Domain and name stand one behind the other, a NUL behind each.
      std::string texts = item.key + '\0';
      texts[texts.find(' ')] = '\0';
      found = found->find(texts) != std::string::npos ? std::optional(item.key) : std::nullopt;
    } else if (found && !item.key.empty()) {
      const auto at = connections.try_emplace(item.path, nullptr, &sqlite3_close).first;
      if (at->second == nullptr) {
        at->second = connectionTo(path(item.path));
      }
      const std::string rows = answerOf(at->second, item.key);
      found = rows.empty() ? std::nullopt : std::optional(rows);
    }
    contents.push_back(found);
  }
  return contents;
}

std::string sqlText(const std::string& text) {
  std::string literal = "'";
  for (const char c : text) {
    literal.append(c == '\'' ? 2 : 1, c);
  }
  return literal + "'";
}

}  // namespace tasselby
