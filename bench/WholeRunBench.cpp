// A whole run over a large sample home, against a program that has been told what has to go.

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "bench/Bench.h"
#include "samples/MacHome.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

constexpr int kScale = 100;
constexpr const char* kSelect = "SELECT *";

/// Removes what a run for `browser` removes, by a list: every file by its path, every row by a
/// statement of its own.
void removeByList(const MacHome& home, const std::string& browser) {
  std::map<std::string, Sqlite> databases;
  for (const SampleItem& item : home.items()) {
    if (!item.goesFor(browser)) {
      continue;
    }
    const std::string path = home.path(item.path);
    if (item.key.empty()) {
      fs::remove(path);
      continue;
    }
    Sqlite& database = databases[path];
    if (database.filePath().empty()) {
      database.open(path);
    }
    database.executeQuery("DELETE" + item.key.substr(std::string(kSelect).size()));
  }
}

Comparison wholeRun(const std::string& worker, const std::string& browser, double bar) {
  const Scratch scratch;
  const MacHome original(scratch.path("original"), kScale);
  std::optional<MacHome> home;
  const double ratio = leastRatio(
      2,
      [&] {
        fs::remove_all(scratch.path("copy"));
        home.emplace(original.copyTo(scratch.path("copy")));
      },
      [&] { usageOf({worker, browser}, home->home()); }, [&] { removeByList(*home, browser); });
  return {browser + " run over a home of " + std::to_string(original.items().size()) + " items",
          "removal by a list", ratio, bar};
}

}  // namespace

std::vector<Comparison> wholeRunBenchmarks(const std::string& worker) {
  return {wholeRun(worker, "Firefox", 1.5), wholeRun(worker, "Opera", 1.5)};
}

}  // namespace tasselby
