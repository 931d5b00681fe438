#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/SafariCookies.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr const char* kPath = "Library/Cookies/Cookies.binarycookies";

const std::vector<SampleCookie> kFour = {
    {".a.test", "0"}, {".a.test", "1"}, {"b.test", "2"}, {"b.test", "3"}};

class CookieStorageTest : public ::testing::Test {
 public:
  struct stat status() const {
    struct stat status{};
    ::stat(home.path(kPath).c_str(), &status);
    return status;
  }

  void deleteAll() {
    for (const HTTPCookie& cookie : storage->cookies()) {
      storage->deleteCookie(cookie);
    }
  }

  ScratchHome home;
  FileManager files{home.home()};
  std::unique_ptr<HTTPCookieStorage> storage = makeSafariCookies(files);
};

TEST_F(CookieStorageTest, RewritesWhatALinkNamesOnceForManyDeletionsAndKeepsItsMode) {
  home.file("real/file", binaryCookieFile(kFour)).link(kPath, "../../real/file");
  ::chmod(home.path(kPath).c_str(), 0640);
  const std::vector<HTTPCookie> cookies = storage->cookies();
  ASSERT_EQ(cookies.size(), 4U);
  EXPECT_EQ(cookies[2].domain, "b.test");
  const ino_t before = status().st_ino;
  for (const std::size_t i : {2U, 0U, 3U}) {
    storage->deleteCookie(cookies[i]);
    EXPECT_EQ(status().st_ino, before);
  }
  storage->synchronize();
  const ino_t after = status().st_ino;
  EXPECT_NE(after, before);
  EXPECT_EQ(status().st_mode & 07777, 0640U);
  EXPECT_TRUE(std::filesystem::is_symlink(home.path(kPath)));
  EXPECT_EQ(storage->cookies().at(0).name, "1");
  EXPECT_EQ(home.list("real"), Names{"file"});

  storage->deleteCookie(cookies[2]);
  storage->synchronize();
  EXPECT_EQ(status().st_ino, after) << "a cookie already gone writes nothing";
}

TEST_F(CookieStorageTest, DeletesByTheRecordsBytesFromWhatIsThereThen) {
  home.file(kPath, binaryCookieFile(kFour));
  const std::vector<HTTPCookie> cookies = storage->cookies();
  for (const std::size_t i : {0U, 1U, 1U, 3U}) {
    storage->deleteCookie(cookies[i]);
  }
  const SampleCookie later = {"b.test", "later"};
  home.file(kPath, binaryCookieFile({kFour[1], later, kFour[1], kFour[0], kFour[2]}));
  storage->synchronize();
  EXPECT_EQ(home.contents(kPath), binaryCookieFile({kFour[1], later, kFour[2]}))
      << "of two identical records one went";
}

TEST_F(CookieStorageTest, NeverWritesADamagedFile) {
  std::string damaged = binaryCookieFile(kFour);
  damaged[20] = '\x7f';  // The first page's number of records.
  home.file(kPath, damaged);
  EXPECT_EQ(storage->cookies().size(), 2U) << "the other page can be read";
  deleteAll();
  storage->synchronize();
  EXPECT_EQ(home.contents(kPath), damaged);
}

TEST_F(CookieStorageTest, ReadsOneFileBehindBothPathsOnce) {
  home.file(kPath, binaryCookieFile(kFour))
      .link("Library/Containers/com.apple.Safari/Data/Library/Cookies",
            home.path("Library/Cookies"));
  EXPECT_EQ(storage->cookies().size(), 4U);
}

TEST_F(CookieStorageTest, LeavesTheOldFileWhenWritingFailsOrTheProcessDiesInIt) {
  home.file(kPath, binaryCookieFile(kFour));
  const auto synchronizeWithin = [this](rlim_t fileSize) {
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit lower = {fileSize, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &lower);
    storage->synchronize();
    ::setrlimit(RLIMIT_FSIZE, &limit);
  };
  deleteAll();
  EXPECT_EXIT(synchronizeWithin(20), ::testing::KilledBySignal(SIGXFSZ), "");
  EXPECT_EQ(home.contents(kPath), binaryCookieFile(kFour));
  const Names before = home.list("Library/Cookies");

  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  synchronizeWithin(20);
  std::signal(SIGXFSZ, action);
  EXPECT_EQ(home.contents(kPath), binaryCookieFile(kFour));
  EXPECT_EQ(home.list("Library/Cookies"), before);
}

}  // namespace
}  // namespace tasselby
