#pragma once

#include <string>
#include <string_view>

namespace tasselby {

/// Paths are bytes; nothing here looks at a disk.

/// `component` below `base` with exactly one "/" between, also when `component` begins with one,
/// and none at its end: behind a link's name it would mean what the link names. An empty
/// `component` leaves `base` alone.
std::string join(const std::string& base, std::string_view component);

/// What stands before and behind the last "/" of `path`.
std::string folderOf(const std::string& path);
std::string nameOf(const std::string& path);

/// Whether appending `component`, read from somebody's data, names something below the folder it is
/// appended to, or that folder by the empty name: no "." or ".." among its parts, no NUL byte.
///
/// Deliberate: a name that leads elsewhere is passed over, though it counts like any other. What is
/// outside of a store is none of the store's.
bool staysBelow(std::string_view component);

/// `name` less its last "." and what follows. A "." at its start begins no extension.
std::string_view withoutExtension(std::string_view name);

}  // namespace tasselby
