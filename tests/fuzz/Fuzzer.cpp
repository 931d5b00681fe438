// Every reader of foreign bytes. FUZZ_TARGET names one; without it, the names are written to the
// standard output, and first inputs for all, a sample home and a scope, to FUZZ_SEEDS. A promise
// that does not hold is an assertion that fails.
#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "app/LocalState.h"
#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/BinaryCookies.h"
#include "platform/offline/ArgumentDomain.h"
#include "platform/offline/KeychainFile.h"
#include "platform/offline/PropertyList.h"
#include "samples/MacHome.h"
#include "samples/ScratchHome.h"
#include "storage/Sqlite.h"

using namespace tasselby;

static const std::map<std::string, void (*)(const std::string&)> kTargets = {
    {"BinaryCookies",
     [](const std::string& file) {
       const BinaryCookies parsed = parseBinaryCookies(file);
       std::vector<bool> gone(parsed.cookies.size());
       std::fill_n(gone.rbegin(), gone.size() / 2, true);
       if (parsed.parsedWholly) {
         const std::string changed = withoutCookies(file, parsed, gone);
         const BinaryCookies after = parseBinaryCookies(changed);
         assert(after.parsedWholly && after.cookies.size() == (gone.size() + 1) / 2);
       }
     }},
    {"LocalState", [](const std::string& text) { profilesInLocalState(text); }},
    {"Names",
     [](const std::string& text) {
       const std::vector<std::string> names = {text};
       const KeepList kept = {"example.com"};
       for (const auto& chosen :
            {WorkerAppDelegate::databaseArray_keep(names, kept),
             WorkerAppDelegate::localStorageArray_browser_keep(names, "Safari", kept),
             WorkerAppDelegate::mozillaLocalStorage_keep(names, kept)}) {
         assert(chosen.empty() || chosen == names);
       }
       const auto site = WorkerExtras::siteWithDomainName(text);
       assert(!site || WorkerExtras::siteWithDomainName("." + *site));
     }},
    {"Keychain",
     [](const std::string& bytes) {
       for (KeychainFile file(bytes); file.next();) {
       }
     }},
    {"Database",
     [](const std::string& bytes) {
       const auto folder = std::filesystem::temp_directory_path() / "tasselby-fuzzer";
       std::filesystem::remove_all(folder);
       makeFile(folder / "database", bytes);
       Sqlite sqlite;
       sqlite.open(folder / "database");
       for (const std::string table :
            {"cookies", "moz_cookies", "webappsstore2", "Databases", "Origins"}) {
         sqlite.executeQuery("SELECT * FROM " + table);
         sqlite.executeQuery("DELETE FROM " + table + " WHERE host IN ('a', 'b')");
       }
     }},
    {"PropertyList", [](const std::string& bytes) {
       boolInBinaryList(bytes, "removeAll");
       assert(argumentDomain({"-removeAll", bytes}).size() < 2);
       // Only a dictionary has keys, and as a value that is false.
       const XmlList list = readXmlList(bytes, "removeAll");
       assert(!list.underKey || (list.top && !*list.top));
     }}};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const char* name = std::getenv("FUZZ_TARGET")) {
    kTargets.at(name)(std::string(data, data + size));
    return 0;
  }
  const MacHome home(std::getenv("FUZZ_SEEDS"), 1);
  home.writeFile("scope", "moc.elpm14%xe.www//x.:http:80");
  for (const auto& [name, target] : kTargets) {
    std::puts(name.c_str());
  }
  std::fflush(stdout);
  std::_Exit(0);  // An ordinary exit counts as a finding.
}
