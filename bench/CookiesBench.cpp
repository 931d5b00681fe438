// Cookies: deleting rows against a program that only runs the statements, rewriting a cookie
// file against reading and writing it once.

#include <algorithm>
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
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

constexpr int kFileCookies = 50000;

/// The plain way: each statement prepared, stepped and finalized, on one connection or, with
/// `reopen`, on one of its own.
void runStatements(const std::string& path, const std::vector<std::string>& statements,
                   bool reopen) {
  sqlite3* connection = nullptr;
  sqlite3_open(path.c_str(), &connection);
  for (const std::string& text : statements) {
    if (reopen) {
      sqlite3_close(connection);
      sqlite3_open(path.c_str(), &connection);
    }
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection, text.c_str(), -1, &statement, nullptr);
    sqlite3_step(statement);
    sqlite3_finalize(statement);
  }
  sqlite3_close(connection);
}

void makeDatabase(const std::string& path, const std::string& table, const std::string& insert,
                  int rows) {
  runStatements(
      path,
      {table, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                  std::to_string(rows) + ") " + insert},
      false);
}

/// A database of cookies in a home, and the statement that deletes the one with the number "%@".
struct RowsCase {
  const char* browser;
  const char* path;
  const char* table;
  const char* insert;
  int rows;
  const char* deletion;
  /// Whether each statement gets a connection of its own.
  bool reopen;
};

/// A run for the browser against a program that runs only the statements.
double deletionRatio(const std::string& worker, const RowsCase& rows) {
  const Scratch scratch;
  const std::string path = scratch.path(std::string("Users/anna/") + rows.path);
  const std::string peerPath = scratch.path("peer.sqlite");
  makeDatabase(path, rows.table, rows.insert, rows.rows);
  fs::copy_file(path, peerPath);
  std::vector<std::string> statements;
  for (int i = 1; i <= rows.rows; ++i) {
    const std::string number = std::to_string(i);
    statements.push_back(formatted(rows.deletion, {number, number}));
  }
  return ratioInTurns({worker, rows.browser}, scratch.path("Users/anna"),
                      [&] { runStatements(peerPath, statements, rows.reopen); });
}

constexpr RowsCase kFirefoxRows = {
    "Firefox",
    "Library/Application Support/Firefox/Profiles/p.default/cookies.sqlite",
    "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, name TEXT, value TEXT, host TEXT, "
    "path TEXT, expiry INTEGER);",
    "INSERT INTO moz_cookies SELECT i, 'session', 'a value of ordinary length', "
    "'www.site' || i || '.example', '/', 2000000000 FROM n;",
    20000,
    "DELETE FROM moz_cookies WHERE host = 'www.site%@.example' AND id = '%@';",
    false};

constexpr RowsCase kOperaRows = {
    "Opera",
    "Library/Application Support/com.operasoftware.Opera/Cookies",
    "CREATE TABLE cookies (creation_utc INTEGER PRIMARY KEY, host_key TEXT, name TEXT, "
    "value TEXT, path TEXT);",
    "INSERT INTO cookies SELECT i, 'www.site' || i || '.example', 'session', "
    "'a value of ordinary length', '/' FROM n;",
    5000,
    "DELETE FROM cookies WHERE host_key = 'www.site%@.example' AND creation_utc = '%@';",
    true};

/// Today's store of one host that is embedded everywhere: the index leads to all its rows, so that
/// each deletion looks at every one that is left.
constexpr RowsCase oneHost(int rows) {
  return {"Opera",
          "Library/Application Support/com.operasoftware.Opera/Cookies",
          "CREATE TABLE cookies (creation_utc INTEGER NOT NULL, host_key TEXT NOT NULL, "
          "top_frame_site_key TEXT NOT NULL, name TEXT NOT NULL, value TEXT, path TEXT, "
          "UNIQUE (host_key, top_frame_site_key, name, path));",
          "INSERT INTO cookies SELECT i, '.tracker.example', "
          "'https://site' || i || '.example', 'id', 'a value of ordinary length', '/' FROM n;",
          rows,
          "DELETE FROM cookies WHERE host_key = '.tracker.example' AND "
          "creation_utc = '%@';",
          true};
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
  const double ratio = leastRatio(
      9, [&] { std::ofstream(path, std::ios::binary) << sample; },
      [&] {
        const auto storage = makeSafariCookies(files);
        const std::vector<HTTPCookie> all = storage->cookies();
        for (std::size_t i = 0; i < all.size(); i += 2) {
          storage->deleteCookie(all[i]);
        }
        storage->synchronize();
      },
      [&] { replaceFile(path, FileManager("").contentsOfFile(path, sample.size()).value_or("")); });
  return {"half of 50,000 cookies off a cookie file", "file read and written once", ratio, 3.0};
}

}  // namespace

std::vector<Comparison> cookieBenchmarks(const std::string& worker) {
  return {cookieFile(),
          {"run that deletes 5,000 Opera cookies", "open, statement, close",
           deletionRatio(worker, kOperaRows), 1.1},
          {"run that deletes 20,000 Firefox cookies", "the statements alone",
           deletionRatio(worker, kFirefoxRows), 1.05},
          {"run that deletes 2,000 cookies of one host", "open, statement, close",
           deletionRatio(worker, oneHost(2000)), 1.1},
          {"run that deletes 4,000 cookies of one host", "open, statement, close",
           deletionRatio(worker, oneHost(4000)), 1.1},
          {"run that deletes 8,000 cookies of one host", "open, statement, close",
           deletionRatio(worker, oneHost(8000)), 1.1}};
}

}  // namespace tasselby
