#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

/// The format of Cookies.binarycookies, the file of the system's shared cookie storage. Bytes in,
/// bytes out: nothing here touches a disk.
///
/// The system's maker has published no description. The layout is the one on which independent
/// readers of such files agree, checked against files that the system itself has written.
///
///     file    "cook", 4 BE page count N, N times 4 BE page size, the pages, 4 BE checksum,
///             07 17 20 05, then the tail: anything, to the end of the file
///     page    00 00 01 00, 4 LE record count C, C times 4 LE record offset in the page,
///             00 00 00 00, the records
///     record  56 bytes of fields, then strings that end with a NUL

/// One record of a cookie file. The texts are parts of the bytes it was parsed from.
struct BinaryCookie {
  /// The page it is in, counted from 0.
  std::size_t page = 0;
  /// All its bytes. What newer systems put behind the strings is among them.
  std::string_view record;
  std::string_view name;
  std::string_view domain;
};

/// What a cookie file holds.
struct BinaryCookies {
  /// Every sound record, in the order of the file.
  std::vector<BinaryCookie> cookies;
  /// Whether nothing was left out and everything around the records is as it should be. Only then
  /// is it known what a changed file has to look like.
  bool parsedWholly = false;
};

/// What `file` holds, which may be any bytes and outlives the answer. Takes time and memory in
/// proportion to its size.
///
/// Records may overlap, but those of a page hold no more than twice the page's bytes in all; what
/// goes beyond is left out.
BinaryCookies parseBinaryCookies(std::string_view file);

/// `file` less each of `parsed.cookies` whose place in `gone` is true. `parsed` is what `file` was
/// parsed to, wholly, and `gone` has a place for each cookie.
///
/// Pages that lose nothing, the records that stay and the tail keep their bytes. A page that loses
/// all its records stays, empty.
std::string withoutCookies(std::string_view file, const BinaryCookies& parsed,
                           const std::vector<bool>& gone);

}  // namespace tasselby
