// Cookies: deleting rows against a program that only runs the statements, rewriting a cookie
// file against reading and writing it once.

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <sqlite3.h>
#include <string>
#include <vector>

#include "bench/Bench.h"
#include "platform/ReplaceFile.h"
#include "platform/SafariCookies.h"
#include "platform/Text.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/PlainSqlite.h"

namespace tasselby {
namespace {

constexpr int kFileCookies = 50000;

/// A store of cookies in a home, and the statement that deletes the one with the number "%@".
struct Store {
  const char* browser;
  const char* path;
  /// Makes the table, and a row of it for each number i of the table n.
  const char* table;
  const char* row;
  const char* deletion;
  /// Whether each statement gets a connection of its own.
  bool reopen;
};

constexpr Store kFirefox = {
    "Firefox",
    "Firefox/Profiles/p.default/cookies.sqlite",
    "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, name TEXT, value TEXT, host TEXT, "
    "path TEXT, expiry INTEGER);",
    "INSERT INTO moz_cookies SELECT i, 'session', 'a value of ordinary length', "
    "'www.site' || i || '.example', '/', 2000000000 FROM n;",
    "DELETE FROM moz_cookies WHERE host = 'www.site%@.example' AND id = '%@';",
    false};

constexpr Store kOpera = {
    "Opera",
    "com.operasoftware.Opera/Cookies",
    "CREATE TABLE cookies (creation_utc INTEGER PRIMARY KEY, host_key TEXT, name TEXT, "
    "value TEXT, path TEXT);",
    "INSERT INTO cookies SELECT i, 'www.site' || i || '.example', 'session', "
    "'a value of ordinary length', '/' FROM n;",
    "DELETE FROM cookies WHERE host_key = 'www.site%@.example' AND creation_utc = '%@';",
    true};

/// Today's store of one host that is embedded everywhere: the index leads to all its rows, so that
/// each deletion looks at every one that is left. The number is no part of the host.
constexpr Store kOneHost = {
    "Opera",
    "com.operasoftware.Opera/Cookies",
    "CREATE TABLE cookies (creation_utc INTEGER NOT NULL, host_key TEXT NOT NULL, "
    "top_frame_site_key TEXT NOT NULL, name TEXT NOT NULL, value TEXT, path TEXT, "
    "UNIQUE (host_key, top_frame_site_key, name, path));",
    "INSERT INTO cookies SELECT i, '.tracker.example', "
    "'https://site' || i || '.example', 'id', 'a value of ordinary length', '/' FROM n;",
    "DELETE FROM cookies WHERE host_key = '.tracker.example' AND creation_utc = '%@';",
    true};

/// The plain way: each statement prepared, stepped and finalized, on one connection or, with
/// `reopen`, on one of its own.
void runStatements(const std::string& path, const std::vector<std::string>& statements,
                   bool reopen) {
  sqlite3* connection = nullptr;
  sqlite3_open(path.c_str(), &connection);
  for (const std::string& statement : statements) {
    if (reopen) {
      sqlite3_close(connection);
      sqlite3_open(path.c_str(), &connection);
    }
    sqlite3_exec(connection, statement.c_str(), nullptr, nullptr, nullptr);
  }
  sqlite3_close(connection);
}

/// A run for the browser against a program that runs only the statements.
Comparison deletion(const std::string& worker, int rows, const char* cookies, const Store& store,
                    double bar) {
  const Scratch scratch;
  const std::string home = scratch.path("Users/anna");
  const std::string path =
      scratch.path("Users/anna/Library/Application Support/" + std::string(store.path));
  plainly(path, std::string(store.table) +
                    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                    std::to_string(rows) + ") " + store.row);
  const std::string peerPath = scratch.path("peer.sqlite");
  std::filesystem::copy_file(path, peerPath);
  std::vector<std::string> statements;
  for (int i = 1; i <= rows; ++i) {
    const std::string number = std::to_string(i);
    statements.push_back(formatted(store.deletion, {number, number}));
  }
  const auto peer = [&] { runStatements(peerPath, statements, store.reopen); };
  return {std::string("run that deletes ") + cookies,
          store.reopen ? "open, statement, close" : "the statements alone",
          ratioInTurns({worker, store.browser}, home, peer), bar};
}

Comparison cookieFile() {
  const Scratch scratch;
  const std::string path = scratch.path("Users/anna/Library/Cookies/Cookies.binarycookies");
  std::vector<SampleCookie> cookies;
  for (int i = 0; i < kFileCookies; ++i) {
    cookies.push_back({"www." + std::to_string(i / 5) + ".example", "name" + std::to_string(i),
                       "a value of ordinary length " + std::to_string(i)});
  }
  const std::string sample = binaryCookieFile(cookies);
  const FileManager files(scratch.path("Users/anna"));
  const auto prepare = [&] { std::ofstream(path, std::ios::binary) << sample; };
  const auto ours = [&] {
    const auto storage = makeSafariCookies(files);
    const std::vector<HTTPCookie> all = storage->cookies();
    for (std::size_t i = 0; i < all.size(); i += 2) {
      storage->deleteCookie(all[i]);
    }
    storage->synchronize();
  };
  const auto peer = [&] {
    replaceFile(path, files.contentsOfFile(path, sample.size()).value_or(""));
  };
  return {"half of 50,000 cookies off a cookie file", "file read and written once",
          leastRatio(9, prepare, ours, peer), 3.0};
}

}  // namespace

std::vector<Comparison> cookieBenchmarks(const std::string& worker) {
  return {cookieFile(),
          deletion(worker, 5000, "5,000 Opera cookies", kOpera, 1.1),
          deletion(worker, 20000, "20,000 Firefox cookies", kFirefox, 1.05),
          deletion(worker, 2000, "2,000 cookies of one host", kOneHost, 1.1),
          deletion(worker, 4000, "4,000 cookies of one host", kOneHost, 1.1),
          deletion(worker, 8000, "8,000 cookies of one host", kOneHost, 1.1)};
}

}  // namespace tasselby
