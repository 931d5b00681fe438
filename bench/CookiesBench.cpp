// Deleting cookies against a minimal program that runs the same statements through SQLite, one by
// one: 20,000 rows of Firefox on one connection may take 1.05 times as long, 5,000 of Chromium with
// a connection for each 1.10 times. Telling a million names against trying every prefix in turn has
// to be 10 times faster. Prints the ratios of the medians; $TMPDIR says on which disk.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <sqlite3.h>
#include <string>
#include <vector>

#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/PrefixMatcher.h"
#include "platform/Text.h"
#include "samples/CookieDatabases.h"
#include "storage/Sqlite.h"
#include "tests/support/WorkerTest.h"

namespace {

using namespace tasselby;

constexpr const char* kLocalState = "Library/Application Support/Chromium/Local State";

double milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

double median(std::vector<double> times) {
  std::ranges::sort(times);
  return times[times.size() / 2];
}

void report(const char* what, const std::vector<double>& ours, const std::vector<double>& theirs) {
  std::printf("%s: %.0f ms, the other %.0f ms, ratio %.3f\n", what, median(ours), median(theirs),
              median(ours) / median(theirs));
}

/// What a minimal program does: each of `statements`, on one connection or on one for each.
void runPlainly(const std::string& path, const std::vector<std::string>& statements, bool each) {
  sqlite3* connection = nullptr;
  for (const std::string& sql : statements) {
    if (connection == nullptr) {
      sqlite3_open(path.c_str(), &connection);
    }
    sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
    if (each) {
      sqlite3_close(connection);
      connection = nullptr;
    }
  }
  sqlite3_close(connection);
}

/// The statements that delete every row of `table` at `path`, by `host` and `identity`.
std::vector<std::string> deletions(const std::string& path, const std::string& table,
                                   const std::string& host, const std::string& identity) {
  Sqlite database;
  database.open(path);
  std::vector<std::string> statements;
  for (const Row& row : database.executeQuery("SELECT * FROM " + table).value_or(RowList())) {
    statements.push_back(formatted("DELETE FROM %@ WHERE %@ = '%@' AND %@ = '%@';",
                                   {table, host, *row.text(host), identity, *row.text(identity)}));
  }
  return statements;
}

bool beginsWithAny(const std::string& name, const std::vector<std::string>& prefixes) {
  return std::ranges::any_of(
      prefixes, [&name](const std::string& prefix) { return name.starts_with(prefix); });
}

/// Random names, one in eight of which begins with one of `prefixes`.
std::vector<std::string> millionNames(const std::vector<std::string>& prefixes) {
  constexpr std::string_view kLetters =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
  std::mt19937 random(1);
  std::vector<std::string> names(1000000);
  for (std::string& name : names) {
    name = random() % 8 == 0 ? prefixes[random() % prefixes.size()] : "";
    for (int i = 0; i < 8; ++i) {
      name += kLetters[random() % kLetters.size()];
    }
  }
  return names;
}

/// A fixture outside of a test.
class Bench final : public WorkerTest {
 public:
  void TestBody() override {}

  void compare(const std::string& browser, std::size_t count, int rounds) {
    std::vector<SampleCookie> cookies(count);
    for (std::size_t i = 0; i < count; ++i) {
      cookies[i].domain = "www.site" + std::to_string(i / 4) + ".example";
      cookies[i].name = "n" + std::to_string(i);
    }
    home.file(kLocalState, localState({"Default"}));
    const bool firefox = browser == "Firefox";
    const std::string path = home.path(cookieStore(browser));
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round < 2 * rounds; ++round) {
      FileManager::removeItemAtPath(path);
      writeCookies(path, browser, cookies);
      if ((round + round / 2) % 2 == 0) {
        ours.push_back(milliseconds([&] { worker.removeCookies_keepCookies(browser, {}); }));
        if (worker.cookies_keepCookies(browser, {}).cookieCount != 0) {
          std::puts("not all rows were deleted");
        }
        continue;
      }
      const auto statements = firefox ? deletions(path, "moz_cookies", "host", "id")
                                      : deletions(path, "cookies", "host_key", "creation_utc");
      theirs.push_back(milliseconds([&] { runPlainly(path, statements, !firefox); }));
    }
    report(browser.c_str(), ours, theirs);
  }

  void compareMatching() const {
    const std::vector<std::string> prefixes = worker.defaultTrackingCookies();
    const std::vector<std::string> names = millionNames(prefixes);
    std::size_t found = 0;
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round < 9; ++round) {
      ours.push_back(milliseconds([&] {
        const PrefixMatcher matcher(worker.defaultTrackingCookies());
        for (const std::string& name : names) {
          found += matcher.matches(name) ? 1 : 0;
        }
      }));
      theirs.push_back(milliseconds([&] {
        for (const std::string& name : names) {
          found -= beginsWithAny(name, prefixes) ? 1 : 0;
        }
      }));
    }
    report(found == 0 ? "a million names" : "a million names, told DIFFERENTLY", ours, theirs);
  }
};

}  // namespace

int main() {
  Bench().compareMatching();
  Bench().compare("Chromium", 5000, 5);
  Bench().compare("Firefox", 20000, 3);
}
