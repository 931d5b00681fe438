// What maps bytes to what they say: the formats that are read, sound and damaged, and the names of
// sites, origins, files and scopes.
#include "app/LocalState.h"
#include "keep/WorkerExtras.h"
#include "platform/BinaryCookies.h"
#include "platform/offline/KeychainFile.h"
#include "platform/offline/PropertyList.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

/// Expects of each case in `table`, "place:byte,place:byte>left" in hexadecimal, that `read` finds
/// what is left in `sound` with these bytes; and that a file which lacks some of its end, but for
/// `spare` bytes, is never read as a whole one is.
void expectLeft(const std::string& sound, std::string (*read)(std::string_view),
                const std::string& table, std::size_t spare = 0) {
  const auto number = [](const std::string& text) { return std::stoul(text, nullptr, 16); };
  for (const std::string& one : split(table, ' ')) {
    // Of just the size, so that a read behind the end is caught.
    std::vector<char> damaged(sound.begin(), sound.end());
    for (const std::string& change : split(one.substr(0, one.find('>')), ',')) {
      damaged.at(number(change)) = static_cast<char>(number(change.substr(change.find(':') + 1)));
    }
    EXPECT_EQ(read({damaged.data(), damaged.size()}), one.substr(one.find('>') + 1)) << one;
  }
  for (std::size_t size = 0; size < sound.size(); ++size) {
    EXPECT_EQ(read(sound.substr(0, size)) == read(sound), size + spare >= sound.size()) << size;
  }
}

/// Of each server, type and account the first letter and the size, "-" for none.
std::string passwordsIn(std::string_view bytes) {
  std::string all;
  KeychainFile file(bytes);
  while (const auto item = file.next()) {
    for (const auto& text : {item->server, item->authenticationType, item->account}) {
      all += text ? std::string(text->substr(0, 1)) + std::to_string(text->size()) : "-";
    }
  }
  return all;
}

TEST(KeychainFile, PassesOverExactlyWhatIsDamaged) {
  // In the file are a table of attributes at 0x1f8 with records of 80 and 64 bytes, those of the
  // account at 0x1068, the type at 0x1168 and the last at 0x11e8; and one of internet passwords at
  // 0x1280 with records at 0x12a8 and 0x138c. The last four bytes number the last change.
  expectLeft(
      keychainFile({{.server = "a.test"}, {.server = "b", .authenticationType = "dflt"}}),
      passwordsIn,
      // Another version; as many tables as fit, and more; a table that outgrows its section; an
      // attribute too many, one without a format, one that is there twice; a type that is a number.
      "7:1> 1a:5,1b:15>a6f4a4b1d4a4 1a:5,1b:16> 1283:f1> 203:38> 1217:0> 467:0> 11a7:2> "
      // Accounts that are numbers; strings in place of blobs; a record too many, one that outgrows
      // its table, one of nothing but words, one shorter than its words.
      "10a7:2>a6f4-b1d4- 1127:0,11a7:0>a6f4a4b1d4a4 128b:3>a6f4a4b1d4a4 138f:e5>a6f4a4 "
      "138f:68>a6f4a4--- 138f:67>a6f4a4 12ab:18,12c2:0,12c3:cc>--- "
      // No value; one outside of its record; a length that outgrows its record, one that does not;
      // the first of 1024 values, of more, of none.
      "12ff:0>-f4a4b1d4a4 12ff:e5>-f4a4b1d4a4 136f:1d>-f4a4b1d4a4 136f:1c>a28f4a4b1d4a4 "
      "12ff:c0,136a:4>a6f4a4b1d4a4 12ff:c0,136a:4,136b:1>-f4a4b1d4a4 12ff:c0>-f4a4b1d4a4",
      4);
}

/// The names of the cookies, behind a "+" if all of the file is sound.
std::string cookiesIn(std::string_view bytes) {
  const BinaryCookies parsed = parseBinaryCookies(bytes);
  std::string all = parsed.parsedWholly ? "+" : "";
  for (const BinaryCookie& cookie : parsed.cookies) {
    all += cookie.name;
  }
  return all;
}

TEST(CookieFile, KeepsTheBytesOfAllThatStaysAndLeavesOutWhatIsUnsound) {
  const std::vector<SampleCookie> cookies = {
      {".a.test", "1", "1"}, {".a.test", "2", "", "/", 5}, {"b.test", "3", "2", "/p", 4}};
  const std::string tail = "\0\0\0\5bplis and more"s, file = binaryCookieFile(cookies, tail);
  const std::string two = withoutCookies(file, parseBinaryCookies(file), {true, false, false});
  EXPECT_EQ(two, binaryCookieFile({cookies[1], cookies[2]}, tail));
  const std::string emptyPage = withoutCookies(two, parseBinaryCookies(two), {true, false});
  EXPECT_EQ(emptyPage.size(), binaryCookieFile({cookies[2]}, tail).size() + 16);
  EXPECT_EQ(cookiesIn(emptyPage), "+3");
  EXPECT_EQ(cookiesIn(file.substr(0, file.size() - tail.size() - 8)), "123") << "pages alone";
  // Another magic; more pages than fit, a page beyond the end, another page start; more records
  // than fit, one in the page header, one beyond the page; five of one record, four of which are
  // twice the page.
  expectLeft(binaryCookieFile(cookies), cookiesIn,
             "0:6b> 7:40> f:5f>12 12:2>3 14:25>3 18:13>23 19:1>23 "
             "14:5,18:5a,1c:5a,20:5a,24:5a,28:5a>22223 "
             // No end of the page header; a record smaller than its fields, and larger than the
             // page; a domain among the fields, a path behind the record, a value without an end;
             // another checksum; another trailer word.
             "21:1>123 24:37>23 24:8c>23 34:37>23 3c:46>23 69:31>23 108:ae>123 10c:6>123");
}

// Lists in which one profile has a name, with a "+", and lists without any.
constexpr const char* kLocalStates = R"(
+OPEN{"None": {}, "Number": {"name": 1}, "Text": "name", "List": [{"name": "x"}],
  "Default": {"name": "Anna", "x": [{}], "y": 1e308}, "Null": {"name": null},
  "Deep": {"name": {"name": "x"}}, "Gone": {"name": "x"}, "Gone": 1}}};
+OPEN{"Default": {"name": "x"}, "Default": {"name": "y", "name": "Anna"}}}};
+{"profile": 1, "profile": {"info_cache": [], "info_cache": ONE}};
OPEN ONE}}]; OPEN [ONE]}}; [{"profile": {"info_cache": ONE}}]; {"profile": [{"info_cache": ONE}]};
{"profile": {"info_cache": ONE}, "profile": 1}; {"profile": {"info_cache": ONE, "info_cache": 1}};
OPEN{"A": {"name": 1e999}}}}; ; "profile"; MANY;
+OPEN{"Default": {"name": "Anna", "x": DEEP}}}}; OPEN{"Default": {"name": "Anna", "x": [DEEP]}}}})";

TEST(LocalState, ListsProfilesThatHaveAName) {
  const std::string deep = std::string(508, '[') + std::string(508, ']');
  std::string texts = replaced(replaced(kLocalStates, "ONE", R"({"Default": {"name": "Anna"}})"),
                               "OPEN", R"({"other": [{"profile": 1}], "profile": {"info_cache": )");
  texts = replaced(replaced(texts, "DEEP", deep), "MANY", std::string(1000000, '['));
  const ProfileMap one = {{"Default", "Anna"}};
  for (const std::string& text : split(texts, ';')) {
    EXPECT_EQ(profilesInLocalState(replaced(text, "+", "")),
              text.find('+') != text.npos ? one : ProfileMap())
        << text.substr(0, 100);
  }
}

std::string dictionary(const std::string& content) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + content + "</dict></plist>";
}

/// A binary list with `value` twice under "k", once in UTF-16, behind another text "k"; and beside
/// it a dictionary that has itself under "k".
std::string binary(const std::string& value) {
  return "bplist00\xD4\1\2\1\3\1\5\6\6\x51k\x10k\x61\0k\x09\xD1\1\5"s + value +
         "\0\x08\0\x11\0\x13\0\x15\0\x18\0\x19\0\x1C\0\0\0\0\0\0\2\1\0\0\0\0\0\0\0\7"s +
         std::string(14, '\0') + static_cast<char>((28 + value.size()) >> 8) +
         static_cast<char>(28 + value.size());
}

// Values that are true, that are false, and that are none.
const Names kValues = {
    "<true/>|<integer> -1</integer>|<integer>0x0a</integer>|<real>0.5</real>|<real>nan</real>|"
    "<string>Y\u00e9s</string>|<string>&#89;es</string>|\x09|\x13\xFF\0\0\0\0\0\0\0|\x11\0\1|"
    "\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\1|\x22\0\0\0\1|\x23\x7F\xF8\0\0\0\0\0\0|\x53yes|"
    "\x5F\x10\x02\t1|\x62\0Y\x20\xAC"s,
    "<false/>|<integer>-0</integer><!--1-->|<real>-0</real>|<string/>|<data>WUVT</data>|"
    "<date>2011-01-01T00:00:00Z</date>|<new>1</new>|<array><true/></array>|<string>\n1</string>|"
    "<string><b>Y</b>es</string>|\x08|\0|\x12\0\0\0\0|\x22\x80\0\0\0|\x50|\x61\x59\0|\xD1\1\4|"
    "\xAF\x17|\x43yes|\x80\1"s,
    "\x13\1|\x15which is an integer of 32 bytes!|\x5F|\x5F\x51|\x5F\x14|"
    "\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF|<true>|<key>k</key>"s};

/// The place in `kValues` of what `list` has under "k".
std::size_t valueIn(std::string_view list) {
  EXPECT_EQ(boolInPropertyList(list, "other"), std::nullopt);
  const std::optional<bool> value = boolInPropertyList(list, "k");
  return !value ? 2 : *value ? 0 : 1;
}

TEST(PropertyList, LastValueOfAKeyDecidesByItsTypeInBothFormats) {
  const std::string before = "<key>o</key><dict><key>k</key><true/></dict><key>k</key><true/>";
  for (std::size_t place = 0; place < kValues.size(); ++place) {
    for (const std::string& value : split(kValues[place], '|')) {
      const bool isXml = value.starts_with('<');
      EXPECT_EQ(valueIn(isXml ? dictionary(before + "<key>k</key>" + value) : binary(value)), place)
          << ::testing::PrintToString(value);
    }
  }
}

TEST(PropertyList, DamagedListHasNoKeys) {
  const std::string member = "<key>k</key><true/>", list = dictionary(member);
  const auto read = [](std::string_view bytes) { return std::to_string(valueIn(bytes)); };
  expectLeft(list, read, "");
  EXPECT_EQ(valueIn(binary("\x5F\x11\1\0"s + std::string(256, 'Y'))), 0U) << "of two bytes' size";
  // Another kind of top, and more objects than the table has.
  expectLeft(binary("\x09"), read, "8:a4>2 3a:8>2");
  // Nesting neither hides a key nor takes memory without bound.
  std::string begins = "<dict>", ends = "</dict>";
  for (int doubled = 0; doubled <= 18; ++doubled, begins += begins, ends += ends) {
    EXPECT_EQ(valueIn(dictionary("<key>o</key>" + begins + ends + member)), doubled < 18 ? 0U : 2U);
  }
  for (const std::string& damaged :
       {dictionary(member + "<key>o</key>"), dictionary(member + "<true/>"), list + list,
        "<!DOCTYPE plist [<!ENTITY e 'e'>]>" + list.substr(21), "<array>" + member + "</array>",
        binary("\x09") + '\0', "{ k = 1; }"s}) {
    EXPECT_EQ(valueIn(damaged), 2U) << damaged.substr(0, 200);
  }
}

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
  std::uint64_t hash = 14695981039346656037U;
  for (const std::string& name : WorkerAppDelegate::defaultTrackingCookies()) {
    for (const char c : name + ",") {
      hash = (hash ^ static_cast<std::uint8_t>(c)) * 1099511628211U;
    }
  }
  EXPECT_EQ(hash, 0x61e00cdd830d6b54U);
}

}  // namespace
}  // namespace tasselby
