#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tasselby {

/// One cookie of a sample store.
struct SampleCookie {
  /// As a browser stores it, with or without a leading ".".
  std::string domain;
  std::string name;
  std::string value;
  std::string path = "/";
  /// 1 secure, 4 not for scripts.
  std::uint32_t flags = 0;
  /// Seconds since 2001-01-01 00:00:00 UTC.
  double expiry = 600000000;
  double creation = 500000000;
};

/// The order of a record's strings. The system has used both.
enum class StringOrder { kNameFirst, kDomainFirst };

/// A file of the system's shared cookie storage with `cookies`, in their order: a page for each
/// domain, as its first cookie comes, and `tail` behind the trailer word.
std::string binaryCookieFile(const std::vector<SampleCookie>& cookies,
                             StringOrder order = StringOrder::kDomainFirst,
                             const std::string& tail = "");

}  // namespace tasselby
