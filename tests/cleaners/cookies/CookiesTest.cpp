#include <algorithm>
#include <random>
#include <set>

#include "cleaners/cookies/TrackingNames.h"
#include "platform/HardError.h"
#include "samples/CookieDatabases.h"
#include "storage/Sqlite.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const KeepList kKept = {"kept.com"};
constexpr const char* kChromeProfiles = "Library/Application Support/Google/Chrome/Local State";

class CookiesTest : public WorkerTest {
 public:
  void writeFifteen(const std::string& browser, const std::string& profile = "Default") {
    writeCookies(home.path(cookieStore(browser, profile)), browser, fifteenCookies());
  }

  RowList rows(const std::string& path, const std::string& sql) const {
    Sqlite database;
    database.open(home.path(path));
    return database.executeQuery(sql).value_or(RowList());
  }
};

TEST_F(CookiesTest, RemovesInEveryBrowserWhatIsNotKeptAndTrackingCookies) {
  home.file(kChromeProfiles, localState({"Default", "without a store"}));
  for (const char* browser : {"Safari", "Google Chrome", "Opera", "Firefox", "Camino"}) {
    SCOPED_TRACE(browser);
    writeFifteen(browser);
    const auto all = worker.cookies_keepCookies(browser, {}).removalList;
    EXPECT_EQ(worker.cookies_keepCookies(browser, kKept).removalList.size(), 12U);

    const CookieCounts counts = worker.removeCookies_keepCookies(browser, kKept);
    EXPECT_EQ(counts.cookies, 15);
    EXPECT_EQ(counts.tracking, 5);
    EXPECT_EQ(makeSafariCookies(files)->cookies().size(), 3U) << "Safari's are on disk";
    const auto left = worker.cookies_keepCookies(browser, {}).removalList;
    ASSERT_EQ(left.size(), 3U);
    for (std::size_t i = 0; i < left.size(); ++i) {
      const Row* row = std::get_if<Row>(&left[i]);
      EXPECT_TRUE(row == nullptr || *row == std::get<Row>(all.at(10 + 2 * i))) << i;
    }
  }
}

TEST_F(CookiesTest, CountsEqualRowsOfTwoProfilesEachAndDeletesThemInBoth) {
  home.file(kChromeProfiles, localState({"Default", "Profile 1"}));
  writeFifteen("Google Chrome");
  writeFifteen("Google Chrome", "Profile 1");
  EXPECT_EQ(worker.cookies_keepCookies("Google Chrome", kKept).removalList.size(), 12U);
  EXPECT_EQ(worker.removeCookies_keepCookies("Google Chrome", kKept).cookies, 30);
  EXPECT_EQ(worker.cookies_keepCookies("Google Chrome", kKept).cookieCount, 0);
}

TEST_F(CookiesTest, PassesOverValuesThatAreNoText) {
  const std::string path = cookieStore("Opera");
  home.file(path, "");
  rows(path, "CREATE TABLE cookies (n, host_key, name, creation_utc INTEGER)");
  rows(path,
       "INSERT INTO cookies VALUES (1, NULL, 'NID', 1), (2, 'gone.com', NULL, 2), "
       "(3, 'gone.com', 'NID', NULL), (4, x'61', 'NID', 4), (5, 1.5, 'NID', 5), "
       "(6, 'gone.com', x'4E4944', 6), (7, 'file:///', 'NID', 7), (8, '^abc', 'NID', 8)");
  const CookieCounts counts = worker.removeCookies_keepCookies("Opera", {});
  EXPECT_EQ(counts.cookies, 4);
  EXPECT_EQ(counts.tracking, 1);
  EXPECT_EQ(rows(path, "SELECT group_concat(n) AS n FROM cookies").at(0).values(),
            std::vector<Value>{"1,3,4,5,7,8"});
}

TEST_F(CookiesTest, LeavesALockedDatabaseAndWhatIsNoProfile) {
  for (const char* profile : {"open", "locked", "../elsewhere"}) {
    writeFifteen("Firefox", profile);
  }
  home.link("Library/Application Support/Firefox/Profiles/link", "../elsewhere");
  Sqlite lock;
  lock.open(home.path(cookieStore("Firefox", "locked")));
  lock.executeNonQuery("BEGIN IMMEDIATE");

  EXPECT_EQ(worker.removeCookies_keepCookies("Firefox", kKept).cookies, 30);
  const auto left = [this](const std::string& profile) {
    return rows(cookieStore("Firefox", profile), "SELECT id FROM moz_cookies").size();
  };
  EXPECT_EQ(left("open"), 3U);
  EXPECT_EQ(left("locked"), 15U);
  EXPECT_EQ(left("../elsewhere"), 15U);
}

TEST_F(CookiesTest, PrunesChannelIdsByOriginAlsoWithoutCookies) {
  const Names origins = {"", "gone", "site1", "www.site1", "https://site1", "site2"};
  const std::string path = channelIdStore("Opera");
  for (const auto& [kept, left] : std::vector<std::pair<KeepList, Names>>{
           {{"it's malformed"}, origins}, {{"site1", "site2"}, {"site1", "site2"}}, {{}, {""}}}) {
    FileManager("").removeItemAtPath(home.path(path));
    writeChannelIds(home.path(path), origins);
    worker.removeCookies_keepCookies("Opera", kept);
    Names found;
    for (const Row& row : rows(path, "SELECT * FROM origin_bound_certs ORDER BY rowid")) {
      found.push_back(*row.text("origin"));
    }
    EXPECT_EQ(found, left);
  }
}

TEST_F(CookiesTest, TouchesNothingForWebKitAndEndsTheRunWithoutAListOfProfiles) {
  writeFifteen("Safari");
  writeFifteen("Chromium");
  writeChannelIds(home.path(channelIdStore("Opera")), {"gone"});
  const auto before = home.snapshot();
  EXPECT_EQ(worker.removeCookies_keepCookies("WebKit", {}).cookies, 0);
  EXPECT_THROW(worker.cookies_keepCookies("Chromium", {}), HardError);
  EXPECT_EQ(home.snapshot(), before);
}

TEST_F(CookiesTest, TellsTrackingNamesAsTryingEveryPrefixWould) {
  const Names prefixes = worker.defaultTrackingCookies();
  ASSERT_EQ(std::set<std::string>(prefixes.begin(), prefixes.end()).size(), 122U);
  const TrackingNames matcher(prefixes);
  std::mt19937 random(1);
  for (int i = 0; i < 100000; ++i) {
    std::string name = prefixes[random() % prefixes.size()].substr(0, random() % 20);
    name += prefixes[random() % prefixes.size()].substr(random() % 2, random() % 3);
    ASSERT_EQ(matcher.match(name),
              std::any_of(prefixes.begin(), prefixes.end(),
                          [&name](const auto& prefix) { return name.starts_with(prefix); }))
        << name;
  }
}

}  // namespace
}  // namespace tasselby
