#pragma once

#include <string>
#include <vector>

#include "samples/SampleCookie.h"

namespace tasselby {

/// The order of a record's strings. The system has used both.
enum class StringOrder { kNameFirst, kDomainFirst };

/// A file of the system's shared cookie storage with `cookies`, in their order: a page for each
/// domain, as its first cookie comes, and `tail` behind the trailer word.
std::string binaryCookieFile(const std::vector<SampleCookie>& cookies,
                             StringOrder order = StringOrder::kDomainFirst,
                             const std::string& tail = "");

}  // namespace tasselby
