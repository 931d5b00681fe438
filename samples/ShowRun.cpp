// Cleans a sample home with the worker and shows, store by store, what went and what stayed.
//
//   show-run WORKER BROWSER [-key value ...]

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

#include "keep/WorkerExtras.h"
#include "samples/MacHome.h"
#include "samples/NotificationBus.h"
#include "samples/RunWorker.h"

namespace tasselby {
namespace {

constexpr std::uint32_t kSeed = 1;

struct StoreCount {
  int before = 0;
  int left = 0;
};

using Contents = std::vector<std::optional<std::string>>;

void printTable(const MacHome& home, const Contents& before, const Contents& after) {
  std::vector<std::string> order;
  std::map<std::string, StoreCount> counts;
  for (std::size_t i = 0; i < home.items().size(); ++i) {
    const std::string& store = home.items()[i].store;
    if (!counts.contains(store)) {
      order.push_back(store);
    }
    counts[store].before += before[i] ? 1 : 0;
    counts[store].left += after[i] ? 1 : 0;
  }
  std::printf("%-32s %8s %8s %8s\n", "store", "before", "removed", "left");
  for (const std::string& store : order) {
    const StoreCount& count = counts[store];
    std::printf("%-32s %8d %8d %8d\n", store.c_str(), count.before, count.before - count.left,
                count.left);
  }
}

void printKeptSites(const MacHome& home) {
  std::set<std::string> kept;
  for (const SampleSite& site : home.sites()) {
    if (site.kept) {
      kept.insert(WorkerExtras::siteWithDomainName(site.host).value_or(""));
    }
  }
  std::printf("sites to keep:");
  for (const std::string& site : kept) {
    std::printf(" %s", site.c_str());
  }
  std::printf("\n\n");
}

int showRun(const std::vector<std::string>& command) {
  std::string volume = (std::filesystem::temp_directory_path() / "tasselby-XXXXXX").native();
  if (::mkdtemp(volume.data()) == nullptr) {
    std::perror(volume.c_str());
    return 1;
  }
  const MacHome home(volume, kSeed);
  const Contents before = home.contents();
  NotificationBus bus;
  const WorkerRun run = runWorker(command, home.home(), bus.address());

  printKeptSites(home);
  printTable(home, before, home.contents());
  for (const ReceivedNotification& notification : bus.received()) {
    std::printf("\n%s: %s\n", notification.summary.c_str(), notification.body.c_str());
  }
  std::printf("%s\nexit status %d after %.1f ms\n", run.output.c_str(), run.status,
              run.seconds * 1000);
  std::error_code ignored;
  std::filesystem::remove_all(volume, ignored);
  return run.status;
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: show-run WORKER BROWSER [-key value ...]\n");
    return 2;
  }
  return tasselby::showRun({argv + 1, argv + argc});
}
