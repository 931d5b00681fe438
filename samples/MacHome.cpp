#include "samples/MacHome.h"

#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <utility>

#include "platform/BinaryCookies.h"
#include "platform/Text.h"
#include "samples/SampleStores.h"
#include "storage/RunStatement.h"
#include "storage/Sqlite.h"

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

/// The bytes of each record of the cookie file `file`, by its domain and name.
std::map<std::string, std::string> cookieRecords(const std::string& file) {
  std::map<std::string, std::string> records;
  for (const BinaryCookie& cookie : parseBinaryCookies(file).cookies) {
    records.emplace(std::string(cookie.domain) + ' ' + std::string(cookie.name), cookie.record);
  }
  return records;
}

std::string described(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    return *text;
  }
  if (const auto* bytes = std::get_if<Bytes>(&value)) {
    return {bytes->begin(), bytes->end()};
  }
  return std::holds_alternative<Null>(value) ? "NULL" : std::to_string(std::get<double>(value));
}

/// The values of all rows that `query` answers; no value when there are none.
std::optional<std::string> rowContents(Sqlite& database, const std::string& query) {
  const RowList rows = database.executeQuery(query).value_or(RowList{});
  std::string contents;
  for (const Row& row : rows) {
    for (const Value& value : row.values()) {
      contents += described(value) + '\n';
    }
  }
  return rows.empty() ? std::nullopt : std::optional(contents);
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

void MacHome::addFile(const std::string& store, const std::string& path, const Browsers& goneFor,
                      std::string contents) {
  if (contents.empty()) {
    std::minstd_rand random(++random_);
    contents.resize(200 + random() % 3000);
    for (char& byte : contents) {
      byte = static_cast<char>(random());
    }
  }
  writeFile(path, contents);
  addItem(store, path, "", goneFor);
}

void MacHome::addItem(const std::string& store, const std::string& path, const std::string& key,
                      const Browsers& goneFor) {
  items_.push_back({store, onVolume(path), key, goneFor});
}

void MacHome::writeFile(const std::string& path, const std::string& contents) const {
  const fs::path full = volume_ / onVolume(path);
  fs::create_directories(full.parent_path());
  std::ofstream(full, std::ios::binary) << contents;
}

void MacHome::writeDatabase(const std::string& path, const std::vector<std::string>& sql) const {
  const fs::path full = volume_ / onVolume(path);
  fs::create_directories(full.parent_path());
  Sqlite database;
  database.open(full.native());
  // A page size and the write-ahead log can only be set outside of a transaction.
  for (const std::string& text : sql) {
    if (text.starts_with("PRAGMA")) {
      database.executeQuery(text);
    }
  }
  database.executeQuery("BEGIN;");
  for (const std::string& text : sql) {
    if (!text.starts_with("PRAGMA")) {
      database.executeQuery(text);
    }
  }
  database.executeQuery("COMMIT;");
}

std::vector<std::optional<std::string>> MacHome::contents() const {
  std::map<std::string, Sqlite> databases;
  std::map<std::string, std::map<std::string, std::string>> cookies;
  std::vector<std::optional<std::string>> contents;
  for (const SampleItem& item : items_) {
    const std::string full = path(item.path);
    if (item.key.empty()) {
      contents.push_back(fileContents(full));
    } else if (item.path.ends_with(".binarycookies")) {
      if (!cookies.contains(item.path)) {
        cookies[item.path] = cookieRecords(fileContents(full).value_or(""));
      }
      const auto found = cookies[item.path].find(item.key);
      contents.push_back(found != cookies[item.path].end() ? std::optional(found->second)
                                                           : std::nullopt);
    } else {
      Sqlite& database = databases[item.path];
      if (database.filePath().empty() && fs::exists(full)) {
        database.open(full);
      }
      contents.push_back(rowContents(database, item.key));
    }
  }
  return contents;
}

std::string sqlText(const std::string& text) {
  return formatted("'%@'", {doubledQuotes(text)});
}

}  // namespace tasselby
