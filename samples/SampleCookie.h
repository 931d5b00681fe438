#pragma once

#include <cstdint>
#include <string>

namespace tasselby {

/// One cookie of a sample store.
struct SampleCookie {
  /// As a browser stores it, with or without a leading ".".
  std::string domain;
  std::string name;
  std::string value = "value";
  std::string path = "/";
  /// 1 secure, 4 not for scripts.
  std::uint32_t flags = 0;
  /// Seconds since 2001-01-01 00:00:00 UTC.
  double expiry = 600000000;
  double creation = 500000000;
};

}  // namespace tasselby
