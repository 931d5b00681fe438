#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tasselby {

/// Every name that a run can have been started with.
inline const std::vector<std::string> kEveryBrowser = {
    "Safari", "WebKit", "Google Chrome", "Chromium", "Camino", "Firefox", "Opera"};

/// One thing in a sample home: a file, a folder, a link, a cookie, a row of a database.
struct SampleItem {
  /// A letter for each browser whose run removes it, in the order above SWGCKFO, * for all of them
  /// and - for none. Behind them k for a kept site's, which goes only where every site goes, e for
  /// what stays just there, a for a file that is removed by itself, not with a folder, and s for a
  /// socket, which cannot be overwritten, or w for what stays with one.
  std::string fate;
  /// Where it is, relative to the volume.
  std::string path;
  /// For a row, the query that answers it; for a Safari cookie, its domain and name with "|"
  /// between; empty for an item that is a file itself.
  std::string key;

  bool is(char letter) const { return fate.find(letter) != fate.npos; }

  /// Whether it goes in a run for `browser`, or in one that keeps no site, or overwrites. For
  /// another name none does.
  bool goesFor(const std::string& browser, bool removeAll = false, bool secure = false) const;
};

/// A site of the sample home.
struct SampleSite {
  std::string host;
  /// Whether a web-form password of it is saved, in the keychain and in Firefox.
  bool kept;
};

/// A Mac home folder `Users/anna` on a volume of its own, in the real formats: everything the
/// worker touches, and neighbours that it must leave alone. It is the same every time.
class MacHome {
 public:
  /// Builds the home below the empty folder `volume`. With `scale` above 1 there are that many
  /// times as many sites without a password, with 0 there are passwords and preferences alone.
  explicit MacHome(std::filesystem::path volume, int scale = 1);

  /// Copies the whole volume as it is now to the empty or missing folder `volume`.
  MacHome copyTo(const std::filesystem::path& volume) const;

  /// The full paths of the volume and of the home folder on it.
  std::string volume() const { return volume_.native(); }
  std::string home() const { return path("Users/anna"); }

  /// The full path of `path` on the volume.
  std::string path(const std::string& path) const { return (volume_ / path).native(); }

  /// The sites that the stores are of, and what all stores hold.
  const std::vector<SampleSite>& sites() const { return sites_; }
  const std::vector<SampleItem>& items() const { return items_; }

  /// For each item what it holds now: the bytes of a file, the target of a link, the values of its
  /// rows. No value when it is not there.
  std::vector<std::optional<std::string>> contents() const;

  /// Makes what `lines` say, an item each: its fate, its path below the folder that the last line
  /// "=" named, in the home or, with "/" first, on the volume. Behind " = " stand a file's contents
  /// (without, it has some of its own), behind " > " what a link names, behind ": " a table and
  /// rows of a database. A line "+" makes a table and is no item. Alternatives stand in braces; @
  /// is each site in turn, with k in the fate only where it is kept, $ each kept site.
  MacHome& add(const std::string& lines);

  /// Writes a file that is no item: an index, a list of profiles.
  void writeFile(const std::string& path, const std::string& contents) const;

 private:
  class Lines;

  std::filesystem::path volume_;
  std::vector<SampleSite> sites_;
  std::vector<SampleItem> items_;
};

}  // namespace tasselby
