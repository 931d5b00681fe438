#pragma once

#include "tests/support/Testing.h"

namespace tasselby {

/// By browser: what a run reports, without and with "removeAll", being cookies, tracking cookies,
/// databases, Flash, Silverlight; and what a preview tells beyond it, being bytes that go, and how
/// many of each there are, by name: caches, stores of cookies, places of files, what is never kept
/// and what is not, stores of rows, what stays, and tracking cookies.
extern const std::map<std::string, Names> kCounts;

/// The numbers in `text`, with a blank for what stands before, between and behind them.
std::string numbersIn(const std::string& text);

/// The sample home, and in it everything odd that a home can have: names, links, sockets, files in
/// place of folders, rows without a text, profiles that are none. Beside it, on the volume, is a
/// folder named "~".
struct OddHome {
  OddHome();

  ScratchHome scratch;
  MacHome home;
};

/// What a home holds before a run, to be held against what it holds afterwards.
class Fates {
 public:
  /// Gives every file that is an item a second name beside the volume of `home`, by which its bytes
  /// are seen after it has gone.
  explicit Fates(const MacHome& home);
  ~Fates() { fs::remove_all(witnesses_); }

  /// Expects that in a run for `browser` every item has met its fate, and that nothing else has
  /// come, gone or changed but what has one of `foreign` in its path.
  void expectMet(const std::string& browser, bool removeAll = false, bool secure = false,
                 const Names& foreign = {}) const;

 private:
  const MacHome& home_;
  const std::string witnesses_ = home_.volume() + "-witnesses";
  const std::vector<std::optional<std::string>> items_ = home_.contents();
  std::map<std::string, std::string> entries_;
};

}  // namespace tasselby
