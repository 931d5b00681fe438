#pragma once

#include <string>
#include <vector>

#include "report/Changes.h"

namespace tasselby {

/// A site whose cookies and storage stay.
struct KeptSite {
  std::string site;
  /// The host of the saved password that it is kept for, and where that is saved.
  std::string host;
  std::string source;
};

/// What a run comes to, or would come to.
struct RunResult {
  std::string browser;
  /// The home folder and the volume that it is on, without links in their paths.
  std::string home;
  std::string volume;
  std::vector<KeptSite> kept;
  Changes changes;
  /// The text of its report; empty when it ended before.
  std::string report;
  /// What it ended hard at; empty when it did not.
  std::string endedAt;
};

}  // namespace tasselby
