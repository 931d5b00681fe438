#pragma once

#include <string>
#include <string_view>

namespace tasselby {

/// Replaces the regular file at `path`, a link being none, by one with the contents `bytes`, in one
/// step: whenever the process dies, the old file or the new one is there whole.
///
/// The new file has the old one's permission bits, and its owner and group as far as this process
/// may give them. After a failure the old file is as it was, with nothing new beside it.
void replaceFile(const std::string& path, std::string_view bytes);

}  // namespace tasselby
