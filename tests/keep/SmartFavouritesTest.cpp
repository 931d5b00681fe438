#include <gtest/gtest.h>
#include <string>

#include "samples/KeychainWriter.h"
#include "storage/Sqlite.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

using SmartFavouritesTest = WorkerTest;

TEST_F(SmartFavouritesTest, KeepsTheSitesOfWebFormPasswordsOnce) {
  EXPECT_TRUE(worker.getSmartFavouritesArray().sites().empty()) << "no keychain";
  home.file("Library/Keychains/login.keychain-db",
            keychainFile({{.server = "www.example.com"},
                          {.server = "mail.example.com", .account = "berta"},
                          {.server = "default.org", .authenticationType = "dflt"},
                          {.server = "untyped.org", .authenticationType = ""},
                          {.server = "localhost"},
                          {.server = "Printer.LOCAL"},
                          {.server = "local"},
                          {.server = "www.anna.certificate"},
                          {.server = ""},
                          {.server = "^odd"},
                          {.server = "local.example.de"}}));
  EXPECT_EQ(worker.getSmartFavouritesArray().sites(), (Names{"example.com", "local.example.de"}));
}

TEST_F(SmartFavouritesTest, KeepsTheSitesOfFirefoxLoginsAsTheyAreStored) {
  const std::string profiles = "Library/Application Support/Firefox/Profiles/";
  for (const char* profile : {"one", "two"}) {
    home.folder(profiles + profile);
    Sqlite logins(home.path(profiles + profile + "/signons.sqlite"));
    logins.executeQuery("CREATE TABLE moz_logins (hostname);");
    logins.executeQuery(
        "INSERT INTO moz_logins VALUES ('https://www.example.com'), ('https://example.com'), "
        "('http://localhost'), (NULL), (x'61'), ('file:///x');");
  }
  home.file(profiles + "damaged/signons.sqlite", "no database").link(profiles + "linked", "one");
  EXPECT_EQ(worker.getFirefoxSmartFavouritesArray().sites(),
            (Names{"example.com", "https://example.com", "http://localhost"}));
}

}  // namespace
}  // namespace tasselby
