// Cleans a sample home with the worker and shows what went and what stayed.
//
//   show-run WORKER BROWSER [-key value ...]

#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "report/Forecast.h"
#include "report/Print.h"
#include "samples/MacHome.h"
#include "samples/NotificationBus.h"
#include "samples/RunWorker.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

/// What a run made of `before`, a volume's folder, in its copy `after`.
Outcome outcomeOf(const std::string& before, const std::string& after) {
  Outcome outcome;
  for (auto item = fs::recursive_directory_iterator(before); item != end(item); ++item) {
    const std::string path = item->path().native();
    const std::string copy = after + path.substr(before.size());
    if (!fs::exists(fs::symlink_status(copy))) {
      outcome.removed.insert(path);
      item.disable_recursion_pending();
    } else if (item->is_directory()) {
      outcome.lookedAt.insert(path);
    } else if (isStore(item->path().filename().native())) {
      outcome.stores.emplace(path, copy);
    }
  }
  return outcome;
}

int showRun(const std::vector<std::string>& command) {
  const ScratchFolder scratch;
  const std::string volume = scratch.path() + "/volume";
  fs::create_directory(volume);
  const MacHome home(volume);
  const MacHome cleaned = home.copyTo(scratch.path() + "/cleaned");
  const NotificationBus bus;
  const WorkerRun run = runWorker(command, cleaned.home(), bus.address());

  // What the run was to keep, and what it has done in truth.
  RunResult result = forecast(command, FileManager(home.home()), scratch);
  result.places = changesOf(outcomeOf(volume, cleaned.volume()), result.kept, scratch);
  const auto received = bus.received();
  result.report = received.empty() ? "" : received.front().body;
  printText(std::cout, result,
            "A run for " + result.browser + " over a sample home removed:", false);
  return run.status;
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  if (argc < 3) {
    std::cerr << "usage: show-run WORKER BROWSER [-key value ...]\n";
    return 2;
  }
  return tasselby::showRun({argv + 1, argv + argc});
}
