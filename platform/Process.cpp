#include "platform/Process.h"

#include <algorithm>
#include <sys/resource.h>
#include <utility>

namespace tasselby {
namespace {

// What a Mac takes where it says that there is no limit, and refuses that: its OPEN_MAX.
constexpr rlim_t kAlwaysTaken = 10240;

}  // namespace

void raiseOpenFileLimit() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
    const rlim_t before = std::exchange(limit.rlim_cur, limit.rlim_max);
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
      limit.rlim_cur = std::max(before, std::min(limit.rlim_max, kAlwaysTaken));
      ::setrlimit(RLIMIT_NOFILE, &limit);
    }
  }
}

}  // namespace tasselby
