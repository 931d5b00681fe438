// Every reader of foreign bytes. FUZZ_TARGET names one; without it, the names are written to the
// standard output and first inputs for each, from a sample home, to folders of FUZZ_SEEDS.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
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
namespace fs = std::filesystem;

namespace {

/// Ends the fuzzer at an input for which something that must hold does not.
void check(bool holds) {
  if (!holds) {
    std::abort();
  }
}

/// Deletes every other cookie: the rest is there, as it was.
void cookies(const std::string& file) {
  const BinaryCookies parsed = parseBinaryCookies(file);
  if (!parsed.parsedWholly) {
    return;
  }
  std::vector<bool> gone;
  std::string left;
  for (const BinaryCookie& cookie : parsed.cookies) {
    gone.push_back(gone.size() % 2 == 0);
    left += gone.back() ? "" : std::string(cookie.record);
  }
  const std::string changed = withoutCookies(file, parsed, gone);
  const BinaryCookies after = parseBinaryCookies(changed);
  check(after.parsedWholly);
  for (const BinaryCookie& cookie : after.cookies) {
    check(left.starts_with(cookie.record));
    left.erase(0, cookie.record.size());
  }
  check(left.empty());
}

/// The tree of the whole document must say the same. One with profiles is not too deep for it.
void localState(const std::string& text) {
  const ProfileMap profiles = profilesInLocalState(text);
  if (profiles.empty()) {
    return;
  }
  ProfileMap expected;
  const nlohmann::json tree = nlohmann::json::parse(text, nullptr, false);
  for (const auto& [folder, profile] : tree["profile"]["info_cache"].items()) {
    if (profile.is_object() && profile.contains("name") && profile["name"].is_string()) {
      expected.emplace(folder, profile["name"].get<std::string>());
    }
  }
  check(profiles == expected);
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
  std::size_t count = 0;
  while (const auto item = file.next()) {
    check(item->server.value_or("").size() <= bytes.size() && ++count <= bytes.size() / 24);
  }
}

void database(const std::string& bytes) {
  const std::string path = fs::temp_directory_path() / ("tasselby-" + std::to_string(::getpid()));
  std::ofstream(path, std::ios::binary) << bytes;
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    fs::remove(path + ending);
  }
  Sqlite sqlite;
  if (sqlite.open(path)) {
    for (const char* table : {"cookies", "moz_cookies", "webappsstore2", "Databases"}) {
      sqlite.executeQuery("SELECT * FROM " + std::string(table) + ";");
    }
    sqlite.executeQuery("DELETE FROM moz_cookies WHERE host = 'a' AND id = '1';");
    sqlite.executeQuery("DELETE FROM Origins WHERE origin NOT IN ('a','b');");
  }
}

void arguments(const std::string& lines) {
  std::vector<std::string> all;
  std::istringstream in(lines);
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

struct Target {
  std::function<void(const std::string&)> run;
  /// Inputs: the files of the sample home whose names end so, and these texts.
  std::vector<std::string> endings;
  std::vector<std::string> texts;
};

const std::map<std::string, Target> kTargets = {
    {"BinaryCookies", {cookies, {".binarycookies"}, {}}},
    {"LocalState", {localState, {"Local State"}, {}}},
    {"Names",
     {names,
      {},
      {"192.168.1.10", "file:///x", "^x", "www.www.a.example.com.", "moc.elpm14%xe.www//x.:http:80",
       "https_www.example.com_0.localstorage", "a%41%c3%BC+b", "moc.b+a.www//x.:", "%zz"}}},
    {"Keychain", {keychain, {".keychain-db"}, {}}},
    {"Database", {database, {"Cookies", "s.sqlite", "e.sqlite", "Databases.db"}, {}}},
    {"Arguments",
     {arguments, {}, {"w\n-removeAll\nYES\nSafari", "-a\n<true/>\n-b\n\"1\"\n-c\n{k=1}", "-\n-a"}}},
    {"PropertyList", {preferences, {"Tasselby.plist"}, {}}},
};

void writeSeeds(const fs::path& seeds) {
  const MacHome home(seeds / "home", 1);
  for (const auto& [name, target] : kTargets) {
    std::puts(name.c_str());
    int number = 0;
    fs::create_directories(seeds / name);
    for (const std::string& text : target.texts) {
      std::ofstream(seeds / name / std::to_string(number++)) << text;
    }
    for (const auto& entry : fs::recursive_directory_iterator(seeds / "home")) {
      for (const std::string& ending : target.endings) {
        if (entry.is_regular_file() && entry.path().native().ends_with(ending)) {
          fs::copy_file(entry.path(), seeds / name / std::to_string(number++));
        }
      }
    }
  }
  fs::remove_all(seeds / "home");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const char* name = std::getenv("FUZZ_TARGET");
  if (name == nullptr) {
    writeSeeds(std::getenv("FUZZ_SEEDS"));
    std::fflush(stdout);
    std::_Exit(0);  // An ordinary exit counts as a finding.
  }
  static const Target& target = kTargets.at(name);
  target.run(std::string(data, data + size));
  return 0;
}
