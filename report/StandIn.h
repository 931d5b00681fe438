#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"
#include "report/Changes.h"
#include "report/ScratchFolder.h"

namespace tasselby {

/// The files of a home folder for a run that must not change them.
///
/// The run is told of a home below a scratch folder, so that what it opens by a path of its own can
/// only lie there: the stores whose contents a run changes, copied when they are first asked for.
/// Everything else is answered from the real home, by name, kind and size, less what the run has
/// removed: a removal is written down and changes nothing.
class StandIn final : public FileManager {
 public:
  /// Stands in for `real`, which outlives it, as does `scratch`.
  StandIn(const FileManager& real, const ScratchFolder& scratch);

  bool fileExistsAtPath(const std::string& path) const override;
  bool isFolderAtPath(const std::string& path) const override;
  bool hasFolderType(const std::string& path) const override;
  std::vector<std::string> contentsOfDirectoryAtPath(const std::string& path) const override;
  bool enumerateDeep(const std::string& path,
                     const std::function<bool(const std::string&)>& visit) const override;
  std::optional<std::string> contentsOfFile(const std::string& path,
                                            std::size_t limit) const override;
  bool hasItemAtPath(const std::string& path) const override;
  int openForOverwriting(const std::string& path) const override;
  void removeItemAtPath(const std::string& path) const override;
  bool emptyFolderAtPath(const std::string& path,
                         const std::vector<std::string>& but) const override;
  void setAsideItemAtPath(const std::string& path, const std::string& newPath) const override;

  /// What the run has come to so far.
  const Outcome& outcome() const { return outcome_; }

  /// The path in the real home that stands behind `path`, one that the run goes by.
  std::string realPath(const std::string& path) const;

 private:
  /// One real folder: its names as they were listed, and those that are removed.
  struct Folder {
    std::optional<std::vector<std::string>> names;
    std::set<std::string, std::less<>> removed;
  };

  std::optional<std::string> resolve(const std::string& path, bool followLast) const;
  std::optional<std::string> walk(std::string at, std::string_view path, bool followLast) const;
  Folder* listed(const std::string& path) const;
  void copyStore(const std::string& path, const std::string& resolved) const;

  const FileManager& real_;
  const ScratchFolder& scratch_;
  std::string root_;
  std::string startedIn_;
  mutable Outcome outcome_;
  /// Real folders by their paths without links.
  mutable std::map<std::string, Folder, std::less<>> folders_;
  /// The folder resolved last, as the run named it, and its path without links.
  mutable std::optional<std::pair<std::string, std::string>> last_;
};

}  // namespace tasselby
