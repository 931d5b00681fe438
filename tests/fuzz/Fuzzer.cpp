// Every reader of foreign bytes. FUZZ_TARGET names one; without it, the names are written to the
// standard output, and first inputs for all, a sample home and a scope, to FUZZ_SEEDS.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <unistd.h>

#include "app/LocalState.h"
#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/BinaryCookies.h"
#include "platform/offline/ArgumentDomain.h"
#include "platform/offline/KeychainFile.h"
#include "platform/offline/PropertyList.h"
#include "samples/MacHome.h"
#include "storage/Sqlite.h"

using namespace tasselby;

namespace {

/// Ends the fuzzer at an input for which something that must hold does not.
void check(bool holds) {
  if (!holds) {
    std::abort();
  }
}

void cookies(const std::string& file) {
  const BinaryCookies parsed = parseBinaryCookies(file);
  if (parsed.parsedWholly) {
    std::vector<bool> gone(parsed.cookies.size());
    std::fill_n(gone.rbegin(), gone.size() / 2, true);
    const std::string changed = withoutCookies(file, parsed, gone);
    const BinaryCookies after = parseBinaryCookies(changed);
    check(after.parsedWholly && after.cookies.size() == (gone.size() + 1) / 2);
  }
}

void names(const std::string& text) {
  for (const auto& chosen :
       {WorkerAppDelegate::databaseArray_keep({text}, {"example.com"}),
        WorkerAppDelegate::localStorageArray_browser_keep({text}, "Safari", {"example.com"}),
        WorkerAppDelegate::mozillaLocalStorage_keep({text}, {"example.com"})}) {
    check(chosen.empty() || chosen == std::vector{text});
  }
  const auto site = WorkerExtras::siteWithDomainName(text);
  check(!site || WorkerExtras::siteWithDomainName("." + *site));
}

void keychain(const std::string& bytes) {
  KeychainFile file(bytes);
  for (std::size_t count = 0; const auto item = file.next(); ++count) {
    check(item->server.value_or("").size() <= bytes.size() && count < bytes.size() / 24);
  }
}

void database(const std::string& bytes) {
  const std::string path =
      std::filesystem::temp_directory_path() / ("tasselby-" + std::to_string(::getpid()));
  std::ofstream(path, std::ios::binary) << bytes;
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    std::filesystem::remove(path + ending);
  }
  Sqlite sqlite;
  sqlite.open(path);
  for (const char* table : {"cookies", "moz_cookies", "webappsstore2", "Databases", "Origins"}) {
    sqlite.executeQuery("SELECT * FROM " + std::string(table));
    sqlite.executeQuery("DELETE FROM " + std::string(table) + " WHERE host IN ('a', 'b')");
  }
}

void preferences(const std::string& bytes) {
  boolInBinaryList(bytes, "removeAll");
  check(argumentDomain({"-removeAll", bytes}).size() < 2);
  // Only a dictionary has keys, and as a value that is false.
  const XmlList list = readXmlList(bytes, "removeAll");
  check(!list.underKey || (list.top && !*list.top));
}

const std::map<std::string, void (*)(const std::string&)> kTargets = {
    {"BinaryCookies", cookies},
    {"LocalState", [](const std::string& text) { profilesInLocalState(text); }},
    {"Names", names},
    {"Keychain", keychain},
    {"Database", database},
    {"PropertyList", preferences}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const char* name = std::getenv("FUZZ_TARGET")) {
    kTargets.at(name)(std::string(data, data + size));
    return 0;
  }
  const std::string seeds = std::getenv("FUZZ_SEEDS");
  const MacHome home(seeds, 1);
  std::ofstream(seeds + "/scope") << "moc.elpm14%xe.www//x.:http:80";
  for (const auto& [name, target] : kTargets) {
    std::puts(name.c_str());
  }
  std::fflush(stdout);
  std::_Exit(0);  // An ordinary exit counts as a finding.
}
