#pragma once

#include <string>

namespace tasselby {

/// The user's preferences: a search list of domains, of which the first that has a key decides.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// Adds the preferences of the application named `suite` behind the process's own.
  virtual void addSuiteNamed(const std::string& suite) = 0;

  /// The boolean under `key`: true for true, for a number other than 0 and for a string such as
  /// "YES"; false for anything else and for a key that no domain has.
  virtual bool boolForKey(const std::string& key) const = 0;
};

}  // namespace tasselby
