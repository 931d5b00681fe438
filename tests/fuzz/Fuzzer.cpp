// Every reader of foreign bytes. FUZZ_TARGET names one; without it, the names are written to the
// standard output, and first inputs for all, a sample home and some texts, to FUZZ_SEEDS.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
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

/// Deletes every other cookie.
void cookies(const std::string& file) {
  const BinaryCookies parsed = parseBinaryCookies(file);
  std::vector<bool> gone(parsed.cookies.size());
  for (std::size_t i = 0; i < gone.size(); i += 2) {
    gone[i] = true;
  }
  if (parsed.parsedWholly) {
    const std::string changed = withoutCookies(file, parsed, gone);
    const BinaryCookies after = parseBinaryCookies(changed);
    check(after.parsedWholly && after.cookies.size() == gone.size() / 2);
  }
}

void names(const std::string& text) {
  const std::vector<std::string> one = {text};
  const KeepList keepList = {"example.com", "example.co.uk", "a b.com"};
  for (const auto& chosen :
       {WorkerAppDelegate::databaseArray_keep(one, keepList),
        WorkerAppDelegate::localStorageArray_browser_keep(one, "Safari", keepList),
        WorkerAppDelegate::mozillaLocalStorage_keep(one, keepList)}) {
    check(chosen.empty() || chosen == one);
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
  for (const char* statement :
       {"SELECT * FROM cookies", "SELECT * FROM moz_cookies", "SELECT * FROM webappsstore2",
        "SELECT * FROM Databases", "DELETE FROM moz_cookies WHERE host = 'a' AND id = '1'",
        "DELETE FROM Origins WHERE origin NOT IN ('a','b')"}) {
    sqlite.executeQuery(statement);
  }
}

/// A command line of a word a line.
void arguments(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    all.push_back(line);
  }
  check(argumentDomain(all).size() <= all.size() / 2);
}

void preferences(const std::string& bytes) {
  boolInBinaryList(bytes, "removeAll");
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
    {"Arguments", arguments},
    {"PropertyList", preferences}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const char* name = std::getenv("FUZZ_TARGET")) {
    kTargets.at(name)(std::string(data, data + size));
    return 0;
  }
  const std::string seeds = std::getenv("FUZZ_SEEDS");
  const MacHome home(seeds, 1);
  for (const char* text : {"moc.elpm14%xe.www//x.:http:80", "^x", "https_www.a.com_0.localstorage",
                           "w\n-removeAll\nYES", "-a\n<true/>\n-b\n\"1\"\n-c\n{k=1}"}) {
    std::ofstream(seeds + "/" + std::to_string(std::hash<std::string>()(text))) << text;
  }
  for (const auto& [name, target] : kTargets) {
    std::puts(name.c_str());
  }
  std::fflush(stdout);
  std::_Exit(0);  // An ordinary exit counts as a finding.
}
