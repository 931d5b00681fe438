// What a large result weighs beside the values in it.

#include <malloc.h>
#include <string>
#include <vector>

#include "bench/Bench.h"
#include "samples/PlainSqlite.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

constexpr int kCookies = 100'000;

/// Makes a cookie store of Firefox, with `kCookies` in it.
void makeCookies(const std::string& path) {
  plainly(path,
          "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, originAttributes TEXT NOT NULL DEFAULT"
          " '', name TEXT, value TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER,"
          " creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER, inBrowserElement INTEGER"
          " DEFAULT 0, sameSite INTEGER DEFAULT 0, rawSameSite INTEGER DEFAULT 0, schemeMap INTEGER"
          " DEFAULT 0, CONSTRAINT moz_uniqueid UNIQUE (name, host, path, originAttributes));"
          "WITH c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < " +
              std::to_string(kCookies) +
              ") INSERT INTO moz_cookies SELECT i, '', 'name' || i, hex(randomblob(16)),"
              " '.www.site' || (i % 5000) || '.example', '/', 1800000000 + i, 1700000000000000 + i,"
              " 1600000000000000 + i, 1, i % 2, 0, 1, 1, 2 FROM c;");
}

std::size_t heapInUse() {
  const struct mallinfo2 heap = ::mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

/// What the values of `rows` take by themselves, with the blocks of their texts.
std::size_t weightOfValues(const RowList& rows) {
  std::size_t weight = 0;
  for (const Row& row : rows) {
    for (const Value& value : row.values()) {
      weight += sizeof(Value);
      const auto* text = std::get_if<std::string>(&value);
      if (text != nullptr && text->capacity() > std::string().capacity()) {
        weight += ::malloc_usable_size(const_cast<char*>(text->data()));
      }
    }
  }
  return weight;
}

}  // namespace

std::vector<Comparison> sqliteBenchmarks(const std::string& /*worker*/) {
  const Scratch scratch;
  Sqlite store;
  const std::string path = scratch.path("cookies.sqlite");
  makeCookies(path);
  store.open(path);
  const std::size_t before = heapInUse();
  const RowList rows = store.executeQuery("SELECT * FROM moz_cookies;").value_or(RowList());
  const auto weight = static_cast<double>(heapInUse() - before);
  return {{"memory of 100,000 cookie rows", "their values alone",
           weight / static_cast<double>(weightOfValues(rows)), 1.6}};
}

}  // namespace tasselby
