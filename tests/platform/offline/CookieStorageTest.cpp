#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/offline/OfflinePlatform.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr const char* kFolder = "Library/Cookies";
constexpr const char* kPath = "Library/Cookies/Cookies.binarycookies";

class CookieStorageTest : public ::testing::Test {
 public:
  /// Writes ten cookies at two domains, then lists them.
  std::vector<HTTPCookie> listTen() {
    home.file(kPath, binaryCookieFile(ten));
    return storage->cookies();
  }

  void deleteAll() {
    for (const HTTPCookie& cookie : storage->cookies()) {
      storage->deleteCookie(cookie);
    }
    storage->synchronize();
  }

  struct stat status() const {
    struct stat status {};
    EXPECT_EQ(::stat(home.path(kPath).c_str(), &status), 0);
    return status;
  }

  /// No file of this process can grow beyond `size` any more.
  static void limitFiles(rlim_t size) {
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(size, limit.rlim_max);
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }

  ScratchHome home;
  FileManager files{home.home()};
  std::unique_ptr<HTTPCookieStorage> storage = makeOfflineCookieStorage(files);
  const std::vector<SampleCookie> ten = [] {
    std::vector<SampleCookie> cookies(10);
    for (std::size_t i = 0; i < cookies.size(); ++i) {
      cookies[i] = {i < 5 ? ".a.test" : "b.test", std::to_string(i), "v"};
    }
    return cookies;
  }();
};

TEST_F(CookieStorageTest, ManyDeletionsCostOneRewriteThatKeepsTheMode) {
  const std::vector<HTTPCookie> cookies = listTen();
  ::chmod(home.path(kPath).c_str(), 0640);
  ASSERT_EQ(cookies.size(), 10U);
  EXPECT_EQ(cookies[7].domain, "b.test");
  const ino_t before = status().st_ino;

  for (const std::size_t i : {9U, 1U, 4U}) {
    storage->deleteCookie(cookies[i]);
    EXPECT_EQ(status().st_ino, before);
  }
  storage->synchronize();
  const ino_t after = status().st_ino;
  EXPECT_NE(after, before);
  EXPECT_EQ(status().st_mode & 07777, 0640U);
  std::vector<SampleCookie> rest = ten;
  for (const int i : {9, 4, 1}) {
    rest.erase(rest.begin() + i);
  }
  EXPECT_EQ(home.contents(kPath), binaryCookieFile(rest));

  storage->deleteCookie(cookies[9]);
  storage->synchronize();
  EXPECT_EQ(status().st_ino, after) << "a cookie already gone writes nothing";
}

TEST_F(CookieStorageTest, ReplacesTheFileThatALinkNames) {
  home.file("elsewhere/real", binaryCookieFile(ten)).link(kPath, "../../elsewhere/real");
  deleteAll();
  EXPECT_TRUE(std::filesystem::is_symlink(home.path(kPath)));
  EXPECT_TRUE(storage->cookies().empty());
  EXPECT_EQ(home.contents("elsewhere/real").size(), 48U);
  EXPECT_EQ(home.list("elsewhere"), Names{"real"});
}

TEST_F(CookieStorageTest, DeletesOneOfTwoIdenticalRecordsAtATime) {
  home.file(kPath, binaryCookieFile({ten[0], ten[1], ten[0]}));
  const std::vector<HTTPCookie> cookies = storage->cookies();
  storage->deleteCookie(cookies[0]);
  storage->deleteCookie(cookies[0]);
  storage->synchronize();
  EXPECT_EQ(home.contents(kPath), binaryCookieFile({ten[1], ten[0]}));
}

TEST_F(CookieStorageTest, DeletesFromWhatAnotherProcessHasWrittenSince) {
  const std::vector<HTTPCookie> cookies = listTen();
  for (const HTTPCookie& cookie : cookies) {
    storage->deleteCookie(cookie);
  }
  const SampleCookie later = {"b.test", "later", "v"};
  home.file(kPath, binaryCookieFile({later, ten[5]}));
  storage->synchronize();
  EXPECT_EQ(home.contents(kPath), binaryCookieFile({later}));
}

TEST_F(CookieStorageTest, NeverWritesADamagedFile) {
  std::string damaged = binaryCookieFile(ten);
  damaged[20] = '\x7f';  // The first page's number of records.
  home.file(kPath, damaged);
  EXPECT_EQ(storage->cookies().size(), 5U) << "the other page can be read";
  deleteAll();
  EXPECT_EQ(home.contents(kPath), damaged);
  EXPECT_EQ(home.list(kFolder), Names{"Cookies.binarycookies"});
}

TEST_F(CookieStorageTest, LeavesTheOldFileWhenWritingFailsOrTheProcessDiesInIt) {
  for (const HTTPCookie& cookie : listTen()) {
    if (cookie.domain == "b.test") {
      storage->deleteCookie(cookie);
    }
  }
  EXPECT_EXIT((limitFiles(100), storage->synchronize()), ::testing::KilledBySignal(SIGXFSZ), "");
  EXPECT_EQ(home.contents(kPath), binaryCookieFile(ten));
  const Names before = home.list(kFolder);

  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  limitFiles(100);
  storage->synchronize();
  limitFiles(RLIM_INFINITY);
  std::signal(SIGXFSZ, action);
  EXPECT_EQ(home.contents(kPath), binaryCookieFile(ten));
  EXPECT_EQ(home.list(kFolder), before);
}

}  // namespace
}  // namespace tasselby
