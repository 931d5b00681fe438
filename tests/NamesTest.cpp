// What maps text to text: hosts to sites, origins, files' names and scopes to what goes.
#include <cstdint>

#include "keep/WorkerExtras.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

// A host and, behind ">", its site. Lengths are in 16-bit units; lower case and decimal digits are
// those of all scripts, and a superscript two is none. Bytes that are no text stay as they are, a
// unit each; a surrogate alone is one unit.
constexpr const char* kSites =
    "EXAMPLE.com.>example.com. .www.x.info>x.info www.x.y.1a2>y.1a2 ...x.info>.x.info "
    "news.example.co.uk>example.co.uk wwwx.example.de>wwwx.example.de a.b.c.\xC2\xB2>b.c.\xC2\xB2 "
    "example.info>example.info 192.168.1.10>192.168.1.10 .^a>^a A.\xFF.\xFE\xC3Z>\xFF.\xFE\xC3z "
    "w.x.y.a1>x.y.a1 a.FILE:///b>none file://x>file://x "
    "www.Example.COM>example.com .> a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3>a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3 "
    "www.www.example.de>www.example.de > a.b.\xC3\x84\xC3\x96\xC3\x9C>b.\xC3\xA4\xC3\xB6\xC3\xBC "
    "www.example.com:8080>example.com:8080 ^a>none A.b.c.\xF4\x90\x80\x80>b.c.\xF4\x90\x80\x80 "
    "^>^ A.B.C.\xF0\x9F\x98\x80x>c.\xF0\x9F\x98\x80x a.b.c.\xD9\xA1z\xD9\xA3>c.\xD9\xA1z\xD9\xA3 "
    "localhost>localhost a.b.c.\xEF\xBF\xBFxx>c.\xEF\xBF\xBFxx A.b.c.\xFF\xA0\x80>c.\xFF\xA0\x80 "
    "A.b.c.\xFF\xF0\x9F\x98>b.c.\xFF\xF0\x9F\x98 A.b.c.\xED\xA0\x80z\xC0>c.\xED\xA0\x80z\xC0";

// Origins of databases that go, those with the letters of a site that is kept among them, and those
// that stay.
const std::string kOrigins =
    "http_www.example.com_0 http_www.example.com_0 file__0 chrome-extension Chrome-extension_a_0 ";
const std::string kKeptOrigins =
    "chrome-extension_a_0 safari-extension_com.example.ext-0123456789_0 www.example.com";

// Scopes, the same way. Only an address that begins with "www." behind the first "//" counts, and
// up to its "/". Escapes are bytes of UTF-8, "+" is a blank and "%2B" a plus; "%2F" ends the host.
const std::string kScopes =
    "gro.elpmaxe.:x.:moc.elpmaxe.: 1.0.0.721.:http:8080 .:http:80 p/moc.elpmaxe//x.:http:80 "
    "moc.elpmaxe.www//gro.x.www//x.:http:80 moc.elpm%xe.www//x.:http:80 FF%.moc.elpmaxe.www//x.: "
    "CB%3C%.moc.elpmaxe.www//x.: 3C%/moc.elpmaxe.www//x.: moc.bB2%a.www//x.: ";
const std::string kKeptScopes =
    "moc.elpmaxe.www.:http:80 ku.oc.elpmaxe.liam.:https:443 gro.elpmaxe moc.elpmaxe.\xFF.:http:80 "
    "moc.\xF0\x9F\x98\x80.:http:80 moc.\xED\xB8\x80\xED\xA0\xBD.:http:80 moc.elpmaxe.www//:sptth.: "
    "p/moc.elpmaxe.www//x.:http:80 gro.x.www//moc.elpmaxe.www//x.:http:80 "
    "moc.elpmaxe.www//gro.b.: moc.elpm14%xe.www//x.:http:80 moc.elpmaxe.77%ww//x.: "
    "x/CB%3C%/moc.elpmaxe.www//x.: moc.b+a.www//x.: gro.xF2%moc.elpmaxe.www//x.:";

// Files' names, the same way, and those of extensions, which go or stay by browser: whole runs show
// of which. "Chrome" is nobody's name.
const std::string kFiles =
    "http_example.org_80.localstorage file__0.localstorage ftp_example.com_0.localstorage "
    "http_www.example.com.localstorage HTTP_www.example.com_0.localstorage .localstorage ";
const std::string kKeptFiles =
    "http_www.example.com_0.localstorage https_mail.example.co.uk_0.localstorage "
    "httpx_example.com_0_1.localstorage http.example.com.localstorage example.com.localstorage "
    "http_\xFF.example.com_0.localstorage http_www.example.org_0.localstorage-journal "
    "http_example.org_0.LOCALSTORAGE";
const std::string kChromiums = "chrome-extension_a_0.localstorage ";
const std::string kSafaris = "safari-extension_com.example.ext-0123456789_0.localstorage ";

TEST(Names, HostsReduceToSites) {
  for (const std::string& word : split(kSites, ' ')) {
    const std::size_t mark = word.find('>');
    EXPECT_EQ(WorkerExtras::siteWithDomainName(word.substr(0, mark)).value_or("none"),
              word.substr(mark + 1));
  }
  EXPECT_EQ(WorkerExtras::siteWithDomainName(std::nullopt), std::nullopt);
}

TEST(Names, InStoresAreChosenByTheirSite) {
  const KeepList keepList = {"example.com", "example.co.uk", "a b.com", "\xF0\x9F\x98\x80.com",
                             "\xED\xB8\x80\xED\xA0\xBD.com"};
  const auto words = [](const std::string& text) { return split(text, ' '); };
  EXPECT_EQ(WorkerAppDelegate::databaseArray_keep(words(kOrigins + kKeptOrigins), keepList),
            words(kOrigins));
  EXPECT_EQ(WorkerAppDelegate::mozillaLocalStorage_keep(words(kScopes + kKeptScopes), keepList),
            words(kScopes));
  for (const auto& [browser, extension] : {std::pair{"Safari", kChromiums}, {"Chrome", kSafaris}}) {
    const Names files = words(kFiles + kSafaris + kChromiums + kKeptFiles);
    EXPECT_EQ(WorkerAppDelegate::localStorageArray_browser_keep(files, browser, keepList),
              words(kFiles + extension));
  }
}

TEST(Names, OfTrackingCookiesStandInTheCatalogueInTheirOrder) {
  Names names = WorkerAppDelegate::defaultTrackingCookies();
  names.at(59) = "person";  // One is a person's name, whose does not matter.
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
