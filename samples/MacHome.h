#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tasselby {

/// Browser names.
using Browsers = std::vector<std::string>;

/// One thing in a sample home: a file, a folder, a link, a cookie, a row of a database.
struct SampleItem {
  /// What it belongs to, in the words of a report: "Firefox cookies".
  std::string store;
  /// Where it is, relative to the volume.
  std::string path;
  /// For a row, the query that answers it; for a Safari cookie, its domain and name with a space
  /// between; empty for an item that is a file itself.
  std::string key;
  /// The browsers whose run removes it.
  Browsers goneFor;
  /// Whether it is a kept site's: it goes only where every site goes.
  bool kept = false;

  /// Whether it goes in a run for `browser`, or in one that keeps no site.
  bool goesFor(const std::string& browser, bool removeAll = false) const;
};

/// A site of the sample home.
struct SampleSite {
  std::string host;
  /// Whether a web-form password of it is saved, in the keychain and in Firefox.
  bool kept;
};

/// A Mac home folder `Users/anna` on a volume of its own, in the real formats: everything the
/// worker touches, and neighbours that it must leave alone. The same seed makes the same home.
class MacHome {
 public:
  /// Builds the home below the empty folder `volume`. With `scale` above 1 there are that many
  /// times as many sites without a password.
  MacHome(std::filesystem::path volume, std::uint32_t seed, int scale = 1);

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

  // For the stores that make up a home. Paths below are relative to the home folder, but for those
  // that begin with "/", which are on the volume.

  /// Writes a file, with contents of its own if none are given, and adds it as an item.
  void addFile(const std::string& store, const std::string& path, const Browsers& goneFor,
               bool kept = false, std::string contents = "");

  /// Adds something already written, by its path, and by its key if it is not the file itself.
  void addItem(const std::string& store, const std::string& path, const std::string& key,
               const Browsers& goneFor, bool kept = false);

  /// Writes a file that is no item of a report: an index, a list of profiles.
  void writeFile(const std::string& path, const std::string& contents) const;

  /// Runs the SQL texts on the database at `path`, made when missing, as one transaction.
  void writeDatabase(const std::string& path, const std::vector<std::string>& sql) const;

 private:
  std::string onVolume(const std::string& path) const;

  std::filesystem::path volume_;
  std::uint32_t random_;
  std::vector<SampleSite> sites_;
  std::vector<SampleItem> items_;
};

}  // namespace tasselby
