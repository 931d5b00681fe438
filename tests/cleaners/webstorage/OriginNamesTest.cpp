#include <map>
#include <string>

#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

class OriginNamesTest : public WorkerTest {
 protected:
  const KeepList keepList = {"example.com", "example.co.uk"};
};

TEST_F(OriginNamesTest, KeepsOnlyExtensionsAmongDatabases) {
  const std::map<std::string, bool> chosenByOrigin = {
      {"http_www.example.com_0", true},
      {"https_example.com_0", true},
      {"https_mail.example.co.uk_443", true},
      {"file__0", true},
      {"chrome-extension_abcdefghijklmnop_0", false},
      {"safari-extension_com.example.ext-0123456789_0", false},
      {"Chrome-extension_abcdefghijklmnop_0", true},
      {"example.com", false},
      {"", true},
      {"http_\xFF_0", true},
  };
  for (const auto& [origin, chosen] : chosenByOrigin) {
    EXPECT_EQ(worker.databaseArray_keep({origin}, keepList), Names(chosen ? 1 : 0, origin));
  }
}

TEST_F(OriginNamesTest, ChoosesLocalStorageFilesByBrowser) {
  // One letter for each of Safari, Google Chrome, Chromium, Opera, and "Chrome" that nobody is: c
  // for chosen, k for kept.
  const std::map<std::string, std::string> fatesByName = {
      {"http_www.example.com_0.localstorage", "kkkkk"},
      {"https_mail.example.com_0.localstorage", "kkkkk"},
      {"https_mail.example.co.uk_0.localstorage", "kkkkk"},
      {"http_example.org_80.localstorage", "ccccc"},
      {"http_192.168.0.10_8080.localstorage", "ccccc"},
      {"file__0.localstorage", "ccccc"},
      {"http_example.com.localstorage", "ccccc"},
      {"http_www.example.com.localstorage", "ccccc"},
      {"chrome-extension_abcdefghijklmnop_0.localstorage", "cckck"},
      {"safari-extension_com.example.ext-0123456789_0.localstorage", "kcccc"},
      {"HTTP_www.example.com_0.localstorage", "ccccc"},
      {"example.com.localstorage", "kkkkk"},
      {".localstorage", "ccccc"},
      {"http_\xFF.example.com_0.localstorage", "kkkkk"},
      {"http_www.example.com_0.localstorage-journal", "kkkkk"},
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

TEST_F(OriginNamesTest, ReadsScopesBackwards) {
  const std::map<std::string, bool> chosenByScope = {
      {"moc.elpmaxe.www.:http:80", false},
      {"moc.elpmaxe.:https:443", false},
      {"ku.oc.elpmaxe.liam.:https:443", false},
      {"gro.elpmaxe.:http:80", true},
      {"gro.elpmaxe.:x.:moc.elpmaxe.:", true},
      {"1.0.0.721.:http:8080", true},
      {"gro.elpmaxe", false},
      {".:http:80", true},
      {"p/moc.elpmaxe.www//x.:http:80", false},
      {"p/moc.elpmaxe//x.:http:80", true},
      {"moc.elpm14%xe.www//x.:http:80", false},
      {"moc.elpm%xe.www//x.:http:80", true},
      {"moc.elpmaxe.www//.:http:80", false},
      {"moc.b+a.www//x.:http:80", true},
      {"moc.elpmaxe.\xFF.:http:80", false},
  };
  for (const auto& [scope, chosen] : chosenByScope) {
    EXPECT_EQ(worker.mozillaLocalStorage_keep({scope}, keepList), Names(chosen ? 1 : 0, scope));
  }
  EXPECT_EQ(worker.mozillaLocalStorage_keep({"moc.b+a.www//x.:"}, KeepList{"a b.com"}), Names{});
}

TEST_F(OriginNamesTest, KeepsOrderAndDuplicates) {
  const Names chosen = {"http_b_0", "file__0", "http_b_0"};
  EXPECT_EQ(worker.databaseArray_keep({"http_b_0", "example.com", "file__0", "http_b_0"}, keepList),
            chosen);
}

}  // namespace
}  // namespace tasselby
