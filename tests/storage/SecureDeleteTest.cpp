#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "samples/ScratchHome.h"
#include "storage/Disposal.h"
#include "storage/SecureDelete.h"

namespace tasselby {
namespace {

constexpr std::size_t kBuffer = 1024;

TEST(SecureDelete, RepeatsOneBufferOverTheWholeFile) {
  ScratchHome home;
  // One size below and one above what a single call gathers, neither a multiple of the buffer's.
  for (const std::size_t size : {std::size_t{5000}, kBuffer * 1024 * 2 + 5}) {
    home.file("file", std::string(size, 'x'));
    const std::string path = home.path("file");

    EXPECT_TRUE(SecureDelete::wipe_phase(FileManager(""), path, 1));
    EXPECT_EQ(home.contents("file"), std::string(size, '\x55'));
    EXPECT_TRUE(SecureDelete::wipe_phase(FileManager(""), path, 2));
    EXPECT_EQ(home.contents("file"), std::string(size, '\xAA'));
    EXPECT_TRUE(SecureDelete::wipe_phase(FileManager(""), path, 3));
    const std::string random = home.contents("file");
    ASSERT_EQ(random.size(), size);
    EXPECT_EQ(random.find('\xFF'), std::string::npos);
    EXPECT_TRUE(std::equal(random.begin() + kBuffer, random.end(), random.begin()));
    EXPECT_GT(std::set<char>(random.begin(), random.begin() + kBuffer).size(), 100U);
  }
}

TEST(SecureDelete, FailsOnOtherPhasesAndWhatCannotBeOpened) {
  ScratchHome home;
  home.file("file", "kept").file("empty", "").socket("socket");

  EXPECT_FALSE(SecureDelete::wipe_phase(FileManager(""), home.path("file"), 0));
  const int free = ::dup(0);
  ::close(free);
  EXPECT_FALSE(SecureDelete::wipe_phase(FileManager(""), home.path("file"), 4));
  const int next = ::dup(0);
  EXPECT_GT(next, free) << "the file stays open";
  ::close(next);
  EXPECT_EQ(home.contents("file"), "kept");
  EXPECT_TRUE(SecureDelete::wipe(FileManager(""), home.path("empty")));
  EXPECT_FALSE(SecureDelete::wipe(FileManager(""), home.path("socket")));
  EXPECT_FALSE(SecureDelete::wipeContentsofDir(FileManager(""), home.home()));
  EXPECT_TRUE(SecureDelete::wipe(FileManager(""), home.path("missing")));
}

TEST(SecureDelete, CountsOnlyTheLowHalfOfTheSize) {
  ScratchHome home;
  home.file("file", "start");
  std::error_code error;
  std::filesystem::resize_file(home.path("file"), (std::uintmax_t{1} << 32) + 2, error);
  if (error) {
    GTEST_SKIP() << "no room for a sparse file";
  }
  EXPECT_TRUE(SecureDelete::wipe_phase(FileManager(""), home.path("file"), 1));
  std::filesystem::resize_file(home.path("file"), 5);
  EXPECT_EQ(home.contents("file"),
            "\x55\x55"
            "art");
}

TEST(SecureDelete, SubtractsWhatAFailedWriteAnswered) {
  ScratchHome home;
  home.file("file", "");
  // A file can grow to 4 KiB here. Of its 2^32 - 8 bytes the first 4096 are written; the rest fail
  // with -1 each, which adds to the count, until it wraps to 0 after 8 + 4096 failures.
  std::error_code error;
  std::filesystem::resize_file(home.path("file"), (std::uintmax_t{1} << 32) - 8, error);
  if (error) {
    GTEST_SKIP() << "no room for a sparse file";
  }
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::_exit(SecureDelete::wipe_phase(FileManager(""), home.path("file"), 1) ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  std::filesystem::resize_file(home.path("file"), 4097);
  EXPECT_EQ(home.contents("file"), std::string(4096, '\x55') + '\0');
}

TEST(Disposal, RemovesOnlyWhatCouldBeWiped) {
  ScratchHome home;
  home.file("file")
      .file("folder/inside", "as it was")
      .file("target", "secret")
      .link("link", "target");
  home.socket("socket");
  std::filesystem::create_hard_link(home.path("folder/inside"), home.path("witness"));

  for (const char* name : {"file", "folder", "link", "socket", "missing"}) {
    dispose(FileManager(""), home.path(name), true);
  }

  EXPECT_EQ(home.list(""), (Names{"socket", "target", "witness"}));
  EXPECT_EQ(home.contents("witness"), "as it was") << "nothing in a folder is overwritten";
  EXPECT_EQ(home.contents("target").size(), 6U);
  EXPECT_NE(home.contents("target"), "secret") << "a link's target is overwritten";
  dispose(FileManager(""), home.path("socket"), false);
  EXPECT_FALSE(home.has("socket"));
}

}  // namespace
}  // namespace tasselby
