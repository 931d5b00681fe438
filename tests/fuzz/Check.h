#pragma once

#include <cstdlib>

namespace tasselby {

/// Ends a fuzzer at an input for which something that must hold does not.
inline void check(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace tasselby
