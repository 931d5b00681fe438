// What the lines of a home mean; see MacHome::add.

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <regex>
#include <sstream>
#include <utility>

#include "samples/BinaryCookieWriter.h"
#include "samples/MacHome.h"
#include "samples/PlainSqlite.h"
#include "samples/SampleStores.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace fs = std::filesystem;

std::string replaced(std::string text, const std::string& part, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; at += with.size()) {
    text.replace(at, part.size(), with);
  }
  return text;
}

Names split(const std::string& text, char at) {
  Names parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, at);) {
    parts.push_back(part);
  }
  return parts;
}

namespace {

/// What stands behind `mark` in `text`, and goes from it with the mark; no value without one.
std::optional<std::string> cut(std::string& text, const std::string& mark) {
  const std::size_t at = text.find(mark);
  std::optional<std::string> rest;
  if (at != text.npos) {
    rest = text.substr(at + mark.size());
    text.resize(at);
  }
  return rest;
}

std::string someContents(std::size_t seed) {
  std::minstd_rand random(static_cast<std::uint32_t>(seed));
  std::string contents(200 + random() % 3000, '\0');
  for (char& byte : contents) {
    byte = static_cast<char>(random());
  }
  return contents;
}

}  // namespace

/// Lines on their way into a home.
class MacHome::Lines {
 public:
  explicit Lines(MacHome& home) : home_(home) {}

  /// Makes the items of a line, one for each alternative and site.
  void addEach(const std::string& fate, const std::string& text) {
    const std::size_t brace = text.find('{');
    const std::size_t mark = text.find_first_of("@$");
    if (brace != text.npos) {
      const std::size_t end = text.find('}', brace);
      for (const std::string& part : split(text.substr(brace + 1, end - brace - 1) + ",", ',')) {
        addEach(fate, text.substr(0, brace) + part + text.substr(end + 1));
      }
    } else if (mark != text.npos) {
      for (const auto& [host, kept] : home_.sites_) {
        const std::string reversed(host.rbegin(), host.rend());
        if (kept || text[mark] == '@') {
          add(kept ? fate : replaced(fate, "k", ""),
              replaced(replaced(replaced(text, "@reversed", reversed), "@", host), "$", host));
        }
      }
    } else {
      add(fate, text);
    }
  }

  /// Ends the transactions, and writes the cookie files anew that have got cookies.
  void finish() {
    for (const auto& [path, connection] : databases_) {
      plainly(connection, "COMMIT;");
      if (!path.ends_with(".binarycookies")) {
        continue;
      }
      std::vector<SampleCookie> cookies;
      for (const SampleItem& item : home_.items_) {
        if (item.path == path) {
          const std::size_t bar = item.key.find('|');
          cookies.push_back({.domain = item.key.substr(0, bar), .name = item.key.substr(bar + 1)});
        }
      }
      home_.writeFile("/" + path, binaryCookieFile(cookies, "a tail"));
    }
  }

 private:
  void add(const std::string& fate, std::string path) {
    const auto target = cut(path, " > ");
    auto table = cut(path, ": ");
    const auto contents = cut(path, " =");
    path = path.starts_with("/") ? path.substr(1) : "Users/anna/" + path;
    path = fs::path(path).lexically_normal().native();
    const fs::path full = home_.path(path);
    fs::create_directories(full.parent_path());
    if (table) {
      rows(fate, path, *table);
      return;
    }
    home_.items_.push_back({fate, path, ""});
    if (target) {
      fs::create_symlink(*target, full);
    } else if (home_.items_.back().is('s')) {
      makeSocket(full.native(), home_.volume());
    } else {
      makeFile(full, contents ? replaced(contents->substr(contents->empty() ? 0 : 1), "\\n", "\n")
                              : someContents(home_.items_.size()));
    }
  }

  /// Makes a table, if `fate` is "+", and its rows, each of which may bear a fate of its own.
  void rows(const std::string& fate, const std::string& path, std::string table) {
    const bool isDatabase = !path.ends_with(".binarycookies");
    const auto rows = isDatabase ? cut(table, ": ") : std::exchange(table, "");
    const std::string name = table.substr(0, table.find(' '));
    Connection& database = databases_.try_emplace(path, nullptr, &sqlite3_close).first->second;
    if (database == nullptr) {
      database = plainConnection(isDatabase ? home_.path(path) : ":memory:");
    }
    const bool isTable = !table.starts_with("PRAGMA");
    if (isTable && sqlite3_get_autocommit(database.get()) != 0) {
      plainly(database, "BEGIN;");
    }
    if (fate == "+") {
      plainly(database, (isTable ? "CREATE TABLE " : "") + std::exchange(table, name));
    }
    static const std::regex ownFate("([A-Z*-][a-z]*) (.*)");
    for (const std::string& row : split(replaced(rows.value_or(""), "; ", "\n"), '\n')) {
      std::smatch parts;
      const bool hasOwn = std::regex_match(row, parts, ownFate);
      const std::string values = hasOwn ? parts.str(2) : row;
      std::string key;
      if (isDatabase) {
        plainly(database, "INSERT INTO " + table + " VALUES (" + values + ");");
        key = "SELECT * FROM " + name +
              " WHERE rowid = " + std::to_string(sqlite3_last_insert_rowid(database.get()));
      } else {
        key = plainly(database, "SELECT " + values).front();
      }
      home_.items_.push_back({hasOwn ? parts.str(1) : fate, path, key});
    }
  }

  MacHome& home_;
  std::map<std::string, Connection> databases_;
};

MacHome& MacHome::add(const std::string& lines) {
  Lines adding(*this);
  std::string folder;
  // A line that begins with blanks goes on the one before.
  for (const std::string& line : split(replaced(lines, "\n  ", " "), '\n')) {
    const std::string rest = line.substr(std::min(line.size(), line.find(' ') + 1));
    if (line.starts_with("=")) {
      folder = rest;
    } else if (!line.empty()) {
      adding.addEach(line.substr(0, line.find(' ')), folder + rest);
    }
  }
  adding.finish();
  return *this;
}

}  // namespace tasselby
