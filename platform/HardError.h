#pragma once

#include <exception>
#include <string>
#include <utility>

namespace tasselby {

/// Ends a run where it stands: whatever had still to be cleaned is left, and no notification is
/// posted.
///
/// Thrown in exactly two places (no "Local State" to parse, a Silverlight store without a site) and
/// caught in one, the platform's main routine, which ends the process silently with
/// `kHardErrorStatus`.
class HardError : public std::exception {
 public:
  /// `at` is the path of what ends the run.
  explicit HardError(std::string at) : at_(std::move(at)) {}

  const std::string& at() const { return at_; }
  const char* what() const noexcept override { return "hard error"; }

 private:
  std::string at_;
};

/// The process's exit status after a hard error: EX_SOFTWARE of sysexits.h.
inline constexpr int kHardErrorStatus = 70;

}  // namespace tasselby
