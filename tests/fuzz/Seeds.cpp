// Writes first inputs for every fuzzer, taken from a sample home.
//
//   fuzz-seeds FOLDER

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "samples/MacHome.h"

namespace {

namespace fs = std::filesystem;

/// Copies the files of the home whose names end in `ending` to the folder of `fuzzer`.
void copyFiles(const fs::path& home, const fs::path& seeds, const std::string& fuzzer,
               const std::string& ending) {
  fs::create_directories(seeds / fuzzer);
  int number = 0;
  for (const auto& entry : fs::recursive_directory_iterator(home)) {
    if (entry.is_regular_file() && entry.path().native().ends_with(ending)) {
      fs::copy_file(entry.path(), seeds / fuzzer / (std::to_string(number++) + ending));
    }
  }
}

void writeTexts(const fs::path& seeds, const std::string& fuzzer,
                const std::vector<std::string>& texts) {
  fs::create_directories(seeds / fuzzer);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::ofstream(seeds / fuzzer / std::to_string(i)) << texts[i];
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: fuzz-seeds FOLDER\n");
    return 2;
  }
  const fs::path seeds = argv[1];
  const fs::path volume = seeds / "home";
  const tasselby::MacHome home(volume, 1);
  copyFiles(volume, seeds, "LocalState", "Local State");
  copyFiles(volume, seeds, "BinaryCookies", ".binarycookies");
  copyFiles(volume, seeds, "Keychain", ".keychain-db");
  copyFiles(volume, seeds, "PropertyList", "Tasselby.plist");
  for (const char* ending : {"Cookies", "cookies.sqlite", "webappsstore.sqlite", "Databases.db"}) {
    copyFiles(volume, seeds, "SqliteRows", ending);
  }
  std::vector<std::string> hosts = {"192.168.1.10", "file:///x", "^x", "www.www.example.com."};
  std::vector<std::string> names = {"moc.elpm14%xe.www//x.:http:80",
                                    "chrome-extension_abcdefghijklmnop_0.localstorage"};
  for (const tasselby::SampleSite& site : home.sites()) {
    hosts.push_back(site.host);
    names.push_back("https_" + site.host + "_0.localstorage");
    names.push_back(std::string(site.host.rbegin(), site.host.rend()) + ".:https:443");
  }
  writeTexts(seeds, "SiteName", hosts);
  writeTexts(seeds, "OriginNames", names);
  writeTexts(seeds, "PercentEscapes", {"a%41%c3%BC+b", "moc.b+a.www//x", "%", "%zz"});
  writeTexts(seeds, "ArgumentDomain",
             {"worker\n-removeAll\nYES\nSafari", "-a\n<true/>\n-b\n\"1\"\n-c\n{k=1}", "-\n-a\n-1"});
  fs::remove_all(volume);
  return 0;
}
