#include "tests/Trial.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <unistd.h>

#include "platform/BinaryCookies.h"
#include "platform/FileManager.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kSeed = 1;

/// In memory where the system has such a folder: thousands of runs, each of which waits for its
/// disk.
fs::path scratchFolder() {
  std::error_code ignored;
  const fs::path memory = "/dev/shm";
  std::string pattern = ((fs::is_directory(memory, ignored) ? memory : fs::temp_directory_path()) /
                         "tasselby-proof-XXXXXX")
                            .native();
  return ::mkdtemp(pattern.data());
}

void disturb(const Disturbance& disturbance) {
  ::setenv("LD_PRELOAD", disturbance.preload.c_str(), 1);
  ::setenv("FAIL_CALLS", disturbance.calls.c_str(), 1);
  ::setenv("FAIL_ERROR", std::to_string(disturbance.error).c_str(), 1);
  ::setenv("FAIL_EVERY", std::to_string(disturbance.every).c_str(), 1);
  ::setenv("FAIL_FROM", disturbance.from.c_str(), 1);
  disturbance.once ? ::setenv("FAIL_ONCE", "1", 1) : ::unsetenv("FAIL_ONCE");
}

bool isSoundDatabase(const std::string& path) {
  Sqlite database;
  if (!database.open(path)) {
    return false;
  }
  const RowList rows = database.executeQuery("PRAGMA integrity_check;").value_or(RowList{});
  return rows.size() == 1 && rows[0].values()[0] == Value(std::string("ok"));
}

}  // namespace

Trial::Trial() : folder_(scratchFolder()) {
  original_.emplace(folder_ / "original", kSeed);
  contents_ = original_->contents();
  reset();
}

Trial::~Trial() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void Trial::reset() {
  fs::remove_all(folder_ / "copy");
  home_.emplace(original_->copyTo(folder_ / "copy"));
}

WorkerRun Trial::run(const std::vector<std::string>& arguments,
                     const std::optional<Disturbance>& disturbance) const {
  std::vector<std::string> command = {WORKER_BINARY};
  command.insert(command.end(), arguments.begin(), arguments.end());
  if (disturbance) {
    disturb(*disturbance);
  }
  WorkerRun result = runWorker(command, home_->home());
  ::unsetenv("LD_PRELOAD");
  return result;
}

pid_t Trial::start(const std::vector<std::string>& arguments) const {
  std::vector<char*> command = {const_cast<char*>(WORKER_BINARY)};
  for (const std::string& argument : arguments) {
    command.push_back(const_cast<char*>(argument.c_str()));
  }
  command.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::setenv("HOME", home_->home().c_str(), 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null", 1);
    ::execv(command[0], command.data());
    ::_exit(127);
  }
  return child;
}

void Trial::expectKept(const std::string& browser, const std::string& label,
                       const std::string& exceptStore) const {
  const auto now = home_->contents();
  for (std::size_t i = 0; i < now.size(); ++i) {
    const SampleItem& item = home_->items()[i];
    if (!item.goesFor(browser) && item.store != exceptStore) {
      EXPECT_EQ(now[i], contents_[i]) << label << ": " << item.path << " " << item.key;
    }
  }
}

void Trial::expectSound(const std::string& label) const {
  std::set<std::string> databases;
  for (const SampleItem& item : home_->items()) {
    const std::string path = home_->path(item.path);
    if (item.key.empty() || !databases.insert(path).second) {
      continue;
    }
    if (path.ends_with(".binarycookies")) {
      const std::string bytes = FileManager("").contentsOfFile(path, 1 << 20).value_or("");
      EXPECT_TRUE(parseBinaryCookies(bytes).parsedWholly) << label << ": " << path;
    } else {
      EXPECT_TRUE(isSoundDatabase(path)) << label << ": " << path;
    }
  }
}

void Trial::expectFinished(const std::string& browser, const std::string& label,
                           const std::vector<std::string>& exceptStores) const {
  const auto now = home_->contents();
  for (std::size_t i = 0; i < now.size(); ++i) {
    const SampleItem& item = home_->items()[i];
    if (item.goesFor(browser) && std::ranges::count(exceptStores, item.store) == 0) {
      EXPECT_FALSE(now[i]) << label << ": " << item.path << " " << item.key;
    }
  }
}

long Trial::rounds() {
  const char* text = ::getenv("PROOF_ROUNDS");
  return text != nullptr ? std::max(1L, std::atol(text)) : 1;
}

}  // namespace tasselby
