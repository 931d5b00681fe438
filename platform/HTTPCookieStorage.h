#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tasselby {

/// One cookie of the shared storage.
struct HTTPCookie {
  /// Tells this cookie from every other of the storage that answered it.
  std::uint64_t identity = 0;
  std::string name;
  /// As stored, a leading "." included.
  std::string domain;
};

/// The cookies that programs on the system's web engine share; Safari's among them.
class HTTPCookieStorage {
 public:
  virtual ~HTTPCookieStorage() = default;

  /// All cookies as they stand. Empty when there are none or they cannot be read.
  virtual std::vector<HTTPCookie> cookies() = 0;

  /// Deletes exactly `cookie`, one that `cookies` answered. A cookie already gone is no error.
  virtual void deleteCookie(const HTTPCookie& cookie) = 0;

  /// Returns when every deletion asked for so far is out of this process's hands: on disk, or with
  /// the service that owns the store. Failures are silent.
  virtual void synchronize() = 0;
};

}  // namespace tasselby
