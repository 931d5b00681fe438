// What maps text to text: hosts to sites, origins, files' names and scopes to what goes.
#include <cstdint>

#include "keep/WorkerExtras.h"
#include "samples/BinaryCookieWriter.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

// U+1F600: two 16-bit units, here in the order that text has them and in the other.
const std::string kFace = "\xF0\x9F\x98\x80";
const std::string kSwapped = "\xED\xB8\x80\xED\xA0\xBD";

TEST(Names, HostsReduceToSites) {
  const std::map<std::string, std::optional<std::string>> siteByHost = {
      {"www.Example.COM", "example.com"},
      {"news.example.co.uk", "example.co.uk"},
      {"x.shop.example.info", "shop.example.info"},
      {"example.info", "example.info"},
      {"192.168.1.10", "192.168.1.10"},
      {"host.123", "host.123"},
      {"localhost", "localhost"},
      {"EXAMPLE.com.", "example.com."},
      {"..example.com", "example.com"},
      {".www.example.com", "example.com"},
      {"www.www.example.de", "www.example.de"},
      {"www2.example.com", "example.com"},
      {"wwwx.example.de", "wwwx.example.de"},
      {"www.example.com:8080", "example.com:8080"},
      {"www.x.y.1a2", "y.1a2"},
      {"w.x.y.a1", "x.y.a1"},
      {"...x.info", ".x.info"},
      {"https://example.com", "https://example.com"},
      {"file:///Users/a", std::nullopt},
      {"a.FILE:///b", std::nullopt},
      {"file://x", "file://x"},
      {"^abc", std::nullopt},
      {"^", "^"},
      {".^a", "^a"},
      {"", ""},
      {".", ""},
      // Lengths are in 16-bit units; lower case and decimal digits are those of all scripts, and a
      // superscript two is none.
      {"A.B.C." + kFace + "x", "c." + kFace + "x"},
      {"a.b.c.d" + kFace, "c.d" + kFace},
      {"a.b.\xC3\x84\xC3\x96\xC3\x9C", "b.\xC3\xA4\xC3\xB6\xC3\xBC"},
      {"a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3", "a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3"},
      {"a.b.c.\xD9\xA1z\xD9\xA3", "c.\xD9\xA1z\xD9\xA3"},
      {"a.b.c.\xC2\xB2", "b.c.\xC2\xB2"},
      // Bytes that are no text stay as they are, a unit each; a surrogate alone is one unit.
      {"A.\xFF.\xFE\xC3Z", "\xFF.\xFE\xC3z"},
      {"A.b.c.\xFF\xF0\x9F\x98", "b.c.\xFF\xF0\x9F\x98"},
      {"A.b.c.\xED\xA0\x80"
       "d\xC0",
       "c.\xED\xA0\x80"
       "d\xC0"},
      {"A.b.c.\xF4\x90\x80\x80", "b.c.\xF4\x90\x80\x80"},
      {"A.b.c.\xE0\x80\x80", "c.\xE0\x80\x80"},
  };
  for (const auto& [host, site] : siteByHost) {
    EXPECT_EQ(WorkerExtras::siteWithDomainName(host), site) << host;
  }
  EXPECT_EQ(WorkerExtras::siteWithDomainName(std::nullopt), std::nullopt);
}

class NamesIn : public WorkerTest {
 protected:
  const KeepList keepList = {"example.com", "example.co.uk", "a b.com", "a/b.com", "b.com"};
};

TEST_F(NamesIn, DatabasesOfExtensionsStayAndNoWebOriginsDo) {
  const std::map<std::string, bool> chosenByOrigin = {
      {"http_www.example.com_0", true},
      {"https_example.com_0", true},
      {"https_mail.example.co.uk_443", true},
      {"file__0", true},
      {"chrome-extension_abcdefghijklmnop_0", false},
      {"safari-extension_com.example.ext-0123456789_0", false},
      {"chrome-extension", true},
      {"Chrome-extension_abcdefghijklmnop_0", true},
      {"example.com", false},
      {"www.example.com", false},
      {"", true},
      {"http_\xFF_0", true},
  };
  for (const auto& [origin, chosen] : chosenByOrigin) {
    EXPECT_EQ(worker.databaseArray_keep({origin}, keepList), Names(chosen ? 1 : 0, origin));
  }
  const Names repeated = {"http_b_0", "file__0", "http_b_0"};
  EXPECT_EQ(worker.databaseArray_keep({"http_b_0", "example.com", "file__0", "http_b_0"}, keepList),
            repeated);
}

TEST_F(NamesIn, LocalStorageFilesGoByTheirHostAndBrowser) {
  // One letter for each of Safari, Google Chrome, Chromium, Opera, and "Chrome" that nobody is: c
  // for chosen, k for kept.
  const std::map<std::string, std::string> fatesByName = {
      {"http_www.example.com_0.localstorage", "kkkkk"},
      {"https_mail.example.com_0.localstorage", "kkkkk"},
      {"https_mail.example.co.uk_0.localstorage", "kkkkk"},
      {"httpx_example.com_0_1.localstorage", "kkkkk"},
      {"http_example.org_80.localstorage", "ccccc"},
      {"http_192.168.0.10_8080.localstorage", "ccccc"},
      {"file__0.localstorage", "ccccc"},
      {"ftp_example.com_0.localstorage", "ccccc"},
      {"http_example.com.localstorage", "ccccc"},
      {"http_www.example.com.localstorage", "ccccc"},
      {"http.example.com.localstorage", "kkkkk"},
      {"chrome-extension_abcdefghijklmnop_0.localstorage", "cckck"},
      {"safari-extension_com.example.ext-0123456789_0.localstorage", "kcccc"},
      {"HTTP_www.example.com_0.localstorage", "ccccc"},
      {"example.com.localstorage", "kkkkk"},
      {".localstorage", "ccccc"},
      {"http_\xFF.example.com_0.localstorage", "kkkkk"},
      {"http_www.example.org_0.localstorage-journal", "kkkkk"},
      {"http_example.org_0.LOCALSTORAGE", "kkkkk"},
      {"StorageTracker.db", "kkkkk"},
  };
  const Names browsers = {"Safari", "Google Chrome", "Chromium", "Opera", "Chrome"};
  for (const auto& [name, fates] : fatesByName) {
    for (std::size_t i = 0; i < browsers.size(); ++i) {
      EXPECT_EQ(worker.localStorageArray_browser_keep({name}, browsers[i], keepList),
                Names(fates[i] == 'c' ? 1 : 0, name))
          << browsers[i];
    }
  }
}

TEST_F(NamesIn, ScopesAreReadBackwards) {
  const std::map<std::string, bool> chosenByScope = {
      {"moc.elpmaxe.www.:http:80", false},
      {"moc.elpmaxe.:https:443", false},
      {"ku.oc.elpmaxe.liam.:https:443", false},
      {"gro.elpmaxe.:http:80", true},
      {"gro.elpmaxe.:x.:moc.elpmaxe.:", true},
      {"1.0.0.721.:http:8080", true},
      {"gro.elpmaxe", false},
      {".:http:80", true},
      {"moc.elpmaxe.\xFF.:http:80", false},
      {"moc.elpmaxe." + kFace + ".:http:80", false},
      {"moc.elpmaxe." + kSwapped + ".:http:80", false},
      // Only an address that begins with "www." behind the first "//" counts, and up to its "/".
      {"p/moc.elpmaxe.www//x.:http:80", false},
      {"p/moc.elpmaxe//x.:http:80", true},
      {"moc.elpmaxe.www//.:http:80", false},
      {"moc.elpmaxe.www//:sptth.:", false},
      {"gro.x.www//moc.elpmaxe.www//x.:http:80", false},
      {"moc.elpmaxe.www//gro.x.www//x.:http:80", true},
      {"moc.elpmaxe.www//gro.b.:", false},
      // Escapes are bytes of UTF-8, "+" is a blank and "%2B" a plus; "%2F" ends the host.
      {"moc.elpm14%xe.www//x.:http:80", false},
      {"moc.elpmaxe.77%ww//x.:", false},
      {"moc.elpm%xe.www//x.:http:80", true},
      {"FF%.moc.elpmaxe.www//x.:", true},
      {"CB%3C%.moc.elpmaxe.www//x.:", true},
      {"x/CB%3C%/moc.elpmaxe.www//x.:", false},
      {"3C%/moc.elpmaxe.www//x.:", true},
      {"moc.b+a.www//x.:", false},
      {"moc.bB2%a.www//x.:", true},
      {"gro.xF2%moc.elpmaxe.www//x.:", false},
  };
  for (const auto& [scope, chosen] : chosenByScope) {
    EXPECT_EQ(worker.mozillaLocalStorage_keep({scope}, keepList), Names(chosen ? 1 : 0, scope));
  }
}

TEST_F(NamesIn, TheCatalogueHasItsNamesInOrderAndEachMarksACookie) {
  Names names = WorkerAppDelegate::defaultTrackingCookies();
  ASSERT_EQ(names.size(), 122U);
  EXPECT_EQ(names, WorkerAppDelegate::defaultTrackingCookies());
  std::vector<SampleCookie> cookies;
  for (const std::string& name : names) {
    cookies.push_back({.domain = "kept.com", .name = name + "1"});
    cookies.push_back({.domain = "kept.com", .name = "X" + name});
  }
  home.file("Library/Cookies/Cookies.binarycookies", binaryCookieFile(cookies));
  const CookieCounts counts = worker.removeCookies_keepCookies("Safari", {"kept.com"});
  EXPECT_EQ(counts.tracking, 122);
  EXPECT_EQ(counts.cookies, 122);
  // The one at place 60 is a person's name, whose does not matter.
  EXPECT_EQ(names[59].size(), 6U);
  EXPECT_TRUE(std::ranges::all_of(names[59], [](char c) { return c >= 'a' && c <= 'z'; }));
  names[59] = "person";
  std::uint64_t hash = 14695981039346656037U;
  for (const std::string& name : names) {
    for (const char c : name + ",") {
      hash = (hash ^ static_cast<std::uint8_t>(c)) * 1099511628211U;
    }
  }
  EXPECT_EQ(hash, 0xe2e37f658e21a722U);
}

}  // namespace
}  // namespace tasselby
