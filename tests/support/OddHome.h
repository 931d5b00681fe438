#pragma once

#include <set>
#include <string>

#include "samples/MacHome.h"
#include "samples/ScratchHome.h"

namespace tasselby {

/// The sample home, and in it everything odd that a home can have: names, links, sockets, files in
/// place of folders, rows without a text, profiles that are none.
struct OddHome {
  OddHome();

  ScratchHome scratch;
  MacHome home;
  /// Where a relative path leads: beside the home, with a folder named "~" in it.
  std::string workingFolder() const { return home.volume(); }

  /// Items by path on the volume, with the key of a row behind a blank: those that are files
  /// removed by themselves, not with a folder, and so overwritten first where that is wanted; and
  /// those that cannot be overwritten, or stay with one that cannot, and so stay where it is.
  std::set<std::string> overwritten;
  std::set<std::string> stubborn;

 private:
  void addCookies();
  void addProfiles(const std::string& browser, const std::string& root);
  void addSafari();
  void addFirefox();
  void addFlash();
  void addSilverlight();
  void addCaches();
  void file(const std::string& path, const Browsers& goneFor, bool kept = false);
  void alone(const std::string& path, const Browsers& goneFor, bool kept = false);
  void socket(const std::string& path, const Browsers& goneFor);
  void row(const std::string& path, const std::string& table, const std::string& values,
           const Browsers& goneFor, bool kept = false);
};

}  // namespace tasselby
