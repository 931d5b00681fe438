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

  /// What a run for `browser` reports.
  std::string report(const std::string& browser, bool removeAll) const;
};

}  // namespace tasselby
