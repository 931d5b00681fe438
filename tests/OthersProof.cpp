// Other processes at work meanwhile: one that writes to the same databases, and one that swaps
// folders for links.

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/FileManager.h"
#include "storage/Sqlite.h"
#include "tests/Trial.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

class Others : public Trial {
 protected:
  /// Runs `work` again and again in a process of its own until `meanwhile` is done.
  template <typename Work, typename Meanwhile>
  void aside(const Work& work, const Meanwhile& meanwhile) {
    const pid_t child = ::fork();
    if (child == 0) {
      while (true) {
        work();
      }
    }
    meanwhile();
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
  }
};

TEST_F(Others, OwnerWritingToTheDatabasesLosesNothing) {
  const std::string path = home().home() + "/Library/Application Support/Camino/cookies.sqlite";
  for (long round = 0; round < 10 * rounds(); ++round) {
    reset();
    aside(
        [&path] {
          Sqlite owner;
          owner.setBusyRetryTimeout(-1);
          owner.open(path);
          owner.executeQuery(
              "UPDATE moz_cookies SET lastAccessed = lastAccessed WHERE host = 'www.example.com';");
          owner.executeQuery("INSERT INTO moz_cookies (name, host) VALUES ('own', 'example.com');");
          owner.executeQuery("DELETE FROM moz_cookies WHERE name = 'own';");
        },
        [this] {
          for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(run({"Camino"}).status, 0);
          }
        });
    const std::string label = "round " + std::to_string(round);
    expectKept("Camino", label);
    expectSound(label);
  }
}

TEST_F(Others, FoldersSwappedForLinksLeadNowhere) {
  const fs::path canary = scratch("canary");
  const fs::path cache = fs::path(home().home()) / "Library/Caches/Camino/Cache";
  constexpr int kCanaries = 200;
  fs::create_directories(canary / "deep");
  for (int i = 0; i < kCanaries; ++i) {
    std::ofstream(canary / "deep" / std::to_string(i)) << "alive";
  }
  std::vector<std::string> folders;
  for (int i = 0; i < 20; ++i) {
    folders.push_back(cache / ("folder" + std::to_string(i)));
  }
  const std::string link = scratch("link");
  const std::string count = scratch("count");
  fs::create_symlink(canary, link);
  std::ofstream(count) << "";

  long swaps = 0;
  const int counter = ::open(count.c_str(), O_WRONLY | O_APPEND);
  while (swaps < 1000 * rounds()) {
    for (const std::string& folder : folders) {
      fs::create_directories(folder + "/deep");
      for (int i = 0; i < 20; ++i) {
        std::ofstream(folder + "/deep/" + std::to_string(i)) << "cached";
      }
    }
    aside(
        [&] {
          for (const std::string& folder : folders) {
            if (::renameat2(AT_FDCWD, folder.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE) ==
                    0 &&
                ::write(counter, "x", 1) == 1) {
              ::renameat2(AT_FDCWD, folder.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE);
            }
          }
        },
        [this] { EXPECT_EQ(run({"Camino"}).status, 0); });
    swaps = static_cast<long>(fs::file_size(count));
    std::error_code ignored;
    fs::remove_all(link, ignored);
    fs::remove_all(cache, ignored);
    fs::create_symlink(canary, link);
    ASSERT_EQ(FileManager("").contentsOfDirectoryAtPath(canary / "deep").size(),
              static_cast<std::size_t>(kCanaries));
  }
  ::close(counter);
  std::printf("%ld swaps\n", swaps);
}

}  // namespace
}  // namespace tasselby
