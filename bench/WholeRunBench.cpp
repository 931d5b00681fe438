// A whole run over a large sample home, against a program that has been told what has to go.

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "bench/Bench.h"
#include "samples/MacHome.h"
#include "samples/SampleStores.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

constexpr int kScale = 100;

/// Removes what a run for `browser` removes, by a list: every file by its path, every row by a
/// statement of its own.
void removeByList(const MacHome& home, const std::string& browser) {
  std::map<std::string, Sqlite> databases;
  for (const SampleItem& item : home.items()) {
    const std::string path = home.path(item.path);
    if (item.goesFor(browser) && item.key.empty()) {
      fs::remove(path);
    } else if (item.goesFor(browser)) {
      Sqlite& database = databases[path];
      if (database.filePath().empty()) {
        database.open(path);
      }
      database.executeQuery(replaced(item.key, "SELECT *", "DELETE"));
    }
  }
}

Comparison wholeRun(const std::string& worker, const std::string& browser, double bar) {
  const Scratch scratch;
  const MacHome original(scratch.path("original"), kScale);
  std::optional<MacHome> home;
  const auto prepare = [&] {
    fs::remove_all(scratch.path("copy"));
    home.emplace(original.copyTo(scratch.path("copy")));
  };
  const auto run = [&] { usageOf({worker, browser}, home->home()); };
  const double ratio = leastRatio(2, prepare, run, [&] { removeByList(*home, browser); });
  return {browser + " run over a home of " + std::to_string(original.items().size()) + " items",
          "removal by a list", ratio, bar};
}

}  // namespace

std::vector<Comparison> wholeRunBenchmarks(const std::string& worker) {
  return {wholeRun(worker, "Firefox", 1.5), wholeRun(worker, "Opera", 1.5)};
}

}  // namespace tasselby
