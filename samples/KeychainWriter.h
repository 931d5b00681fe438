#pragma once

#include <string>
#include <vector>

namespace tasselby {

/// An internet password as a program saves it. What is not here is filled in empty, as the system
/// does.
struct SavedPassword {
  std::string server = {};
  /// Four letters: "form" for a web form, "dflt" for most other programs.
  std::string authenticationType = "form";
  std::string account = "anna";
};

/// The bytes of a keychain database with `passwords` in their order: the describing relations, no
/// generic passwords, and internet passwords, of which one was deleted. The secrets are filler.
///
/// The layout is that of the system's published database library. The index sections are empty;
/// the blob of the database's own keys is left out.
std::string keychainFile(const std::vector<SavedPassword>& passwords);

}  // namespace tasselby
