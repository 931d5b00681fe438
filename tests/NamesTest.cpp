// What maps text to text: hosts to sites, origins, files' names and scopes to what goes.
#include <cstdint>
#include <iterator>
#include <sstream>

#include "keep/WorkerExtras.h"
#include "samples/BinaryCookieWriter.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

// A host and, behind ">", its site, if it has one. Lengths are in 16-bit units; lower case and
// decimal digits are those of all scripts, and a superscript two is none. Bytes that are no text
// stay as they are, a unit each; a surrogate alone is one unit.
constexpr const char* kSites =
    "www.Example.COM>example.com news.example.co.uk>example.co.uk example.info>example.info "
    "192.168.1.10>192.168.1.10 host.123>host.123 localhost>localhost EXAMPLE.com.>example.com. "
    "..example.com>example.com .www.example.com>example.com www.www.example.de>www.example.de "
    "wwwx.example.de>wwwx.example.de www.example.com:8080>example.com:8080 www.x.y.1a2>y.1a2 "
    "w.x.y.a1>x.y.a1 ...x.info>.x.info a.FILE:///b file://x>file://x ^a ^>^ .^a>^a > .> "
    "A.B.C.\xF0\x9F\x98\x80x>c.\xF0\x9F\x98\x80x a.b.c.d\xF0\x9F\x98\x80>c.d\xF0\x9F\x98\x80 "
    "a.b.\xC3\x84\xC3\x96\xC3\x9C>b.\xC3\xA4\xC3\xB6\xC3\xBC a.b.c.\xC2\xB2>b.c.\xC2\xB2 "
    "a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3>a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3 "
    "a.b.c.\xD9\xA1z\xD9\xA3>c.\xD9\xA1z\xD9\xA3 A.\xFF.\xFE\xC3Z>\xFF.\xFE\xC3z "
    "A.b.c.\xFF\xF0\x9F\x98>b.c.\xFF\xF0\x9F\x98 A.b.c.\xED\xA0\x80z\xC0>c.\xED\xA0\x80z\xC0 "
    "a.b.c.\xEF\xBF\xBFxx>c.\xEF\xBF\xBFxx A.b.c.\xF4\x90\x80\x80>b.c.\xF4\x90\x80\x80 "
    "A.b.c.\xE0\x80\x80>c.\xE0\x80\x80";

// Origins of databases, and scopes: "+" before one that is chosen, "-" before one that is kept. Of
// a scope only an address that begins with "www." behind the first "//" counts, and up to its "/".
// Escapes are bytes of UTF-8, "+" is a blank and "%2B" a plus; "%2F" ends the host.
constexpr const char* kOrigins =
    "+http_www.example.com_0 +https_example.com_0 +file__0 -chrome-extension_abcdefghijklmnop_0 "
    "-safari-extension_com.example.ext-0123456789_0 +chrome-extension + -www.example.com "
    "+Chrome-extension_abcdefghijklmnop_0 +http_\xFF_0";

constexpr const char* kScopes =
    "-moc.elpmaxe.www.:http:80 -ku.oc.elpmaxe.liam.:https:443 +gro.elpmaxe.:x.:moc.elpmaxe.: "
    "+1.0.0.721.:http:8080 -gro.elpmaxe +.:http:80 -moc.elpmaxe.\xFF.:http:80 "
    "-moc.\xF0\x9F\x98\x80.:http:80 -moc.\xED\xB8\x80\xED\xA0\xBD.:http:80 "
    "-p/moc.elpmaxe.www//x.:http:80 +p/moc.elpmaxe//x.:http:80 -moc.elpmaxe.www//:sptth.: "
    "-gro.x.www//moc.elpmaxe.www//x.:http:80 +moc.elpmaxe.www//gro.x.www//x.:http:80 "
    "-moc.elpmaxe.www//gro.b.: -moc.elpm14%xe.www//x.:http:80 -moc.elpmaxe.77%ww//x.: "
    "+moc.elpm%xe.www//x.:http:80 +FF%.moc.elpmaxe.www//x.: +CB%3C%.moc.elpmaxe.www//x.: "
    "-x/CB%3C%/moc.elpmaxe.www//x.: +3C%/moc.elpmaxe.www//x.: -moc.b+a.www//x.: "
    "+moc.bB2%a.www//x.: -gro.xF2%moc.elpmaxe.www//x.:";

// A mark for each of Safari, Google Chrome, Chromium, Opera, and "Chrome" that nobody is, then a
// file's name.
constexpr const char* kFiles =
    "-----http_www.example.com_0.localstorage -----https_mail.example.co.uk_0.localstorage "
    "-----httpx_example.com_0_1.localstorage +++++http_example.org_80.localstorage "
    "+++++file__0.localstorage +++++ftp_example.com_0.localstorage "
    "+++++http_www.example.com.localstorage -----http.example.com.localstorage "
    "++-+-chrome-extension_abcdefghijklmnop_0.localstorage "
    "-++++safari-extension_com.example.ext-0123456789_0.localstorage "
    "+++++HTTP_www.example.com_0.localstorage -----example.com.localstorage "
    "+++++.localstorage -----http_\xFF.example.com_0.localstorage "
    "-----http_www.example.org_0.localstorage-journal -----http_example.org_0.LOCALSTORAGE";

Names words(const std::string& text) {
  std::istringstream in(text);
  return {std::istream_iterator<std::string>(in), {}};
}

TEST(Names, HostsReduceToSites) {
  for (const std::string& word : words(kSites)) {
    const std::size_t mark = word.find('>');
    EXPECT_EQ(WorkerExtras::siteWithDomainName(word.substr(0, mark)),
              mark == word.npos ? std::nullopt : std::optional(word.substr(mark + 1)))
        << word;
  }
  EXPECT_EQ(WorkerExtras::siteWithDomainName(std::nullopt), std::nullopt);
}

TEST(Names, InStoresAreChosenByTheirSite) {
  const KeepList keepList = {"example.com", "example.co.uk", "a b.com", "\xF0\x9F\x98\x80.com",
                             "\xED\xB8\x80\xED\xA0\xBD.com"};
  const Names browsers = {"Safari", "Google Chrome", "Chromium", "Opera", "Chrome"};
  const auto expectChosen = [](const char* table, std::size_t letters, std::size_t letter,
                               const auto& chosen) {
    for (const std::string& word : words(table)) {
      const std::string name = word.substr(letters);
      EXPECT_EQ(chosen({name}), Names(word[letter] == '+' ? 1 : 0, name)) << letter << name;
    }
  };
  expectChosen(kOrigins, 1, 0, [&](const Names& names) {
    return WorkerAppDelegate::databaseArray_keep(names, keepList);
  });
  expectChosen(kScopes, 1, 0, [&](const Names& names) {
    return WorkerAppDelegate::mozillaLocalStorage_keep(names, keepList);
  });
  for (std::size_t i = 0; i < browsers.size(); ++i) {
    expectChosen(kFiles, browsers.size(), i, [&](const Names& names) {
      return WorkerAppDelegate::localStorageArray_browser_keep(names, browsers[i], keepList);
    });
  }
  EXPECT_EQ(WorkerAppDelegate::databaseArray_keep({"b_0", "example.com", "f", "b_0"}, keepList),
            (Names{"b_0", "f", "b_0"}));
}

using Catalogue = WorkerTest;

TEST_F(Catalogue, HasItsNamesInOrderAndEachMarksACookie) {
  std::vector<SampleCookie> cookies;
  std::uint64_t hash = 14695981039346656037U;
  for (const std::string& name : WorkerAppDelegate::defaultTrackingCookies()) {
    cookies.push_back({.domain = "kept.com", .name = name + "1"});
    cookies.push_back({.domain = "kept.com", .name = "X" + name});
    // The one at place 60 is a person's name, whose does not matter.
    for (const char c : (cookies.size() == 120 ? "person" : name) + ",") {
      hash = (hash ^ static_cast<std::uint8_t>(c)) * 1099511628211U;
    }
  }
  EXPECT_EQ(hash, 0xe2e37f658e21a722U);
  home.file("Library/Cookies/Cookies.binarycookies", binaryCookieFile(cookies));
  const CookieCounts counts = worker.removeCookies_keepCookies("Safari", {"kept.com"});
  EXPECT_EQ(counts.tracking, 122);
  EXPECT_EQ(counts.cookies, 122);
}

}  // namespace
}  // namespace tasselby
