#pragma once

#include <exception>

namespace tasselby {

/// Ends a run where it stands: whatever had still to be cleaned is left, and no notification is
/// posted.
///
/// Thrown in exactly two places (no "Local State" to parse, a Silverlight store without a site) and
/// caught in one, the platform's main routine, which ends the process silently with
/// `kHardErrorStatus`.
class HardError : public std::exception {
 public:
  const char* what() const noexcept override { return "hard error"; }
};

/// The process's exit status after a hard error: EX_SOFTWARE of sysexits.h.
inline constexpr int kHardErrorStatus = 70;

}  // namespace tasselby
