#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tasselby {

/// An internet password as a program saves it. What it leaves out is filled in empty, as the system
/// does.
struct SavedPassword {
  std::string server = {};
  /// Four letters: "form" for a web form, "dflt" for most other programs.
  std::string authenticationType = "form";
  std::string account = "anna";
  /// Four letters.
  std::string protocol = "htps";
  std::uint32_t port = 0;
  std::string path = {};
};

/// The bytes of a keychain database with `passwords` in their order: the describing relations, no
/// generic passwords, and internet passwords, of which one was deleted. The secrets are filler.
///
/// The layout is that of the system's published database library. The index sections are empty;
/// the blob of the database's own keys is left out.
std::string keychainFile(const std::vector<SavedPassword>& passwords);

}  // namespace tasselby
