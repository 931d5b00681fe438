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
  std::string value = "value";
  std::string path = "/";
  /// 1 secure, 4 not for scripts.
  std::uint32_t flags = 0;
};

/// A file of the system's shared cookie storage with `cookies`, in their order: a page for each
/// domain, as its first cookie comes, and `tail` behind the trailer word.
std::string binaryCookieFile(const std::vector<SampleCookie>& cookies,
                             const std::string& tail = "");

/// The lower 32 bits of `number`, the highest byte first.
std::string bigEndian(std::uint64_t number);

}  // namespace tasselby
