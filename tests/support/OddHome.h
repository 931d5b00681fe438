#pragma once

#include "samples/MacHome.h"
#include "tests/support/Testing.h"

namespace tasselby {

/// The sample home, and in it everything odd that a home can have: names, links, sockets, files in
/// place of folders, rows without a text, profiles that are none. Beside it, on the volume, is a
/// folder named "~".
struct OddHome {
  OddHome();

  ScratchHome scratch;
  MacHome home;
  std::string workingFolder() const { return home.volume(); }
  /// Items by their path, and a row's key behind a blank: files that are removed by themselves, not
  /// with a folder, and so overwritten first where that is wanted; and what cannot be overwritten,
  /// or stays with what cannot, and so stays where that is wanted.
  std::set<std::string> overwritten, stubborn;
};

}  // namespace tasselby
