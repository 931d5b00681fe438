// Files of the system's cookie storage, sound and damaged.
#include <sys/stat.h>

#include "platform/BinaryCookies.h"
#include "platform/SafariCookies.h"
#include "samples/BinaryCookieWriter.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::vector<SampleCookie> kCookies = {
    {".a.test", "x", "1"},
    {".a.test", "y", "", "/", 5},
    {"b.test", "x", "2", "/p", 4, 600000000.5, 500000000.25},
};

// A file of `kCookies`, and the same after the first two are gone.
constexpr const char* kFile =
    "636f6f6b000000020000009f000000560000010002000000140000005a0000000000000046000000000000000000"
    "00000000000038000000400000004200000044000000000000000000000000000000a3e1c1410000000065cdbd41"
    "2e612e746573740078002f0031004500000000000000050000000000000038000000400000004200000044000000"
    "000000000000000000000000a3e1c1410000000065cdbd412e612e746573740079002f0000000001000100000010"
    "0000000000000046000000000000000400000000000000380000003f000000410000004400000000000000000000"
    "0000004000a3e1c1410000400065cdbd41622e746573740078002f70003200000009ad07172005";
constexpr const char* kFileWithEmptyPage =
    "636f6f6b000000020000000c00000056000001000000000000000000000001000100000010000000000000004600"
    "0000000000000400000000000000380000003f0000004100000044000000000000000000000000004000a3e1c141"
    "0000400065cdbd41622e746573740078002f700032000000036607172005";

std::string bytes(std::string_view hex) {
  std::string result;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    result += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
  }
  return result;
}

std::string without(const std::string& file, const std::vector<bool>& gone) {
  return withoutCookies(file, parseBinaryCookies(file), gone);
}

TEST(CookieFile, IsReadAndRewrittenToTheByte) {
  const std::string file = bytes(kFile);
  ASSERT_EQ(binaryCookieFile(kCookies), file);
  const BinaryCookies parsed = parseBinaryCookies(file);
  ASSERT_TRUE(parsed.parsedWholly);
  ASSERT_EQ(parsed.cookies.size(), 3U);
  EXPECT_EQ(parsed.cookies[1].name, "y");
  EXPECT_EQ(parsed.cookies[1].domain, ".a.test");
  EXPECT_EQ(without(file, {true, true, false}), bytes(kFileWithEmptyPage));
  EXPECT_EQ(without(without(file, {true, false, false}), {true, false}), bytes(kFileWithEmptyPage));
  // In either order of strings, and with anything behind it.
  const std::string tail("\0\0\0\5bplis and more", 18);
  for (const StringOrder order : {StringOrder::kNameFirst, StringOrder::kDomainFirst}) {
    const std::string other = binaryCookieFile(kCookies, order, tail);
    EXPECT_EQ(without(other, {true, false, false}),
              binaryCookieFile({kCookies[1], kCookies[2]}, order, tail));
    EXPECT_EQ(without(other, {false, false, false}), other);
  }
}

TEST(CookieFile, LeavesOutWhatIsUnsoundAndSaysSo) {
  struct Damage {
    const char* label;
    std::size_t at;
    char byte;
    std::size_t cookiesLeft;
  };
  const std::vector<Damage> damages = {
      {"another magic", 0, 'k', 0},
      {"more pages than fit", 4, '\x7f', 0},
      {"a page beyond the end", 12, '\xff', 2},
      {"another page start", 18, '\2', 1},
      {"a record in the page header", 24, '\x13', 2},
      {"a record behind the page", 27, '\x7f', 2},
      {"two offsets of one record", 28, '\x14', 3},
      {"no end of the page header", 33, '\1', 3},
      {"a record smaller than its fields", 36, '7', 2},
      {"a record larger than the page", 39, '\x7f', 2},
      {"a domain among the fields", 52, '7', 2},
      {"a path behind the record", 61, '\1', 2},
      {"a value without an end", 105, '1', 2},
      {"another checksum", 264, '\xae', 3},
      {"another trailer word", 268, '\6', 3},
  };
  for (const auto& [label, at, byte, cookiesLeft] : damages) {
    std::string file = bytes(kFile);
    file[at] = byte;
    const BinaryCookies parsed = parseBinaryCookies(file);
    EXPECT_EQ(parsed.cookies.size(), cookiesLeft) << label;
    EXPECT_FALSE(parsed.parsedWholly) << label;
  }
}

TEST(CookieFile, AnswersAnyCutAndFlip) {
  const std::string file = bytes(kFile);
  for (std::size_t i = 0; i < file.size(); ++i) {
    EXPECT_FALSE(parseBinaryCookies(file.substr(0, i)).parsedWholly) << i;
    for (int bit = 0; bit < 8; ++bit) {
      std::string flipped = file;
      flipped[i] = static_cast<char>(flipped[i] ^ 1 << bit);
      const BinaryCookies parsed = parseBinaryCookies(flipped);
      if (parsed.parsedWholly) {
        const std::string left = without(flipped, std::vector<bool>(parsed.cookies.size(), true));
        EXPECT_TRUE(parseBinaryCookies(left).parsedWholly && left.size() == 48) << i;
      }
    }
  }
}

constexpr const char* kPath = "Library/Cookies/Cookies.binarycookies";
const std::vector<SampleCookie> kFour = {
    {".a.test", "0"}, {".a.test", "1"}, {"b.test", "2"}, {"b.test", "3"}};

struct CookieStorage : ::testing::Test {
  struct stat status() const {
    struct stat status{};
    ::stat(home.path(kPath).c_str(), &status);
    return status;
  }

  /// Deletes the cookies at `places` of the storage's.
  void remove(const std::vector<std::size_t>& places) {
    const std::vector<HTTPCookie> cookies = storage->cookies();
    for (const std::size_t place : places) {
      storage->deleteCookie(cookies.at(place));
    }
  }

  ScratchHome home;
  FileManager files{home.home()};
  std::unique_ptr<HTTPCookieStorage> storage = makeSafariCookies(files);
};

TEST_F(CookieStorage, RewritesWhatALinkNamesOnceAndKeepsItsMode) {
  home.file("real/file", binaryCookieFile(kFour)).link(kPath, "../../real/file");
  ::chmod(home.path(kPath).c_str(), 0640);
  const std::vector<HTTPCookie> cookies = storage->cookies();
  const ino_t before = status().st_ino;
  remove({2, 0, 3});
  EXPECT_EQ(status().st_ino, before) << "deletions are gathered";
  storage->synchronize();
  const ino_t after = status().st_ino;
  EXPECT_NE(after, before);
  EXPECT_EQ(status().st_mode & 07777, 0640U);
  EXPECT_TRUE(fs::is_symlink(home.path(kPath)));
  EXPECT_EQ(home.contents(kPath).size(), binaryCookieFile({kFour[1]}).size() + 16) << "empty page";
  EXPECT_EQ(home.list("real"), Names{"file"});
  storage->deleteCookie(cookies[2]);
  storage->synchronize();
  EXPECT_EQ(status().st_ino, after) << "a cookie already gone writes nothing";
}

TEST_F(CookieStorage, DeletesByTheRecordsBytesFromWhatIsThereThen) {
  home.file(kPath, binaryCookieFile(kFour));
  remove({0, 1, 1, 3});
  const SampleCookie later = {"b.test", "later"};
  home.file(kPath, binaryCookieFile({kFour[1], later, kFour[1], kFour[0], kFour[2]}));
  storage->synchronize();
  EXPECT_EQ(home.contents(kPath), binaryCookieFile({kFour[1], later, kFour[2]}))
      << "of two identical records one went";
}

TEST_F(CookieStorage, ReadsOneFileBehindBothPathsOnce) {
  home.file(kPath, binaryCookieFile(kFour))
      .link("Library/Containers/com.apple.Safari/Data/Library/Cookies",
            home.path("Library/Cookies"));
  EXPECT_EQ(storage->cookies().size(), 4U);
}

TEST_F(CookieStorage, NeverWritesADamagedFileAndRewritesTheOther) {
  const std::string other = "Library/Containers/com.apple.Safari/Data/" + std::string(kPath);
  std::string damaged = binaryCookieFile(kFour);
  damaged[20] = '\x7f';  // The first page's number of records.
  home.file(kPath, damaged).file(other, binaryCookieFile(kFour));
  EXPECT_EQ(storage->cookies().size(), 6U) << "the other page can be read";
  remove({0, 1, 2, 3, 4});
  storage->synchronize();
  EXPECT_EQ(home.contents(kPath), damaged);
  EXPECT_EQ(parseBinaryCookies(home.contents(other)).cookies.size(), 1U);
}

}  // namespace
}  // namespace tasselby
