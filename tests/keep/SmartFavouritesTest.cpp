#include <gtest/gtest.h>
#include <string>

#include "samples/KeychainWriter.h"
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

}  // namespace
}  // namespace tasselby
