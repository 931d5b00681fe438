#pragma once

#include <memory>

#include "platform/FileManager.h"
#include "platform/HTTPCookieStorage.h"

namespace tasselby {

/// Safari's cookies, out of its own files: `~/Library/Cookies/Cookies.binarycookies` and, behind
/// it, the one in Safari's container, where Safari of macOS 11 and later keeps them.
///
/// Deletions are gathered until `synchronize`, which rewrites each file that loses a cookie once,
/// in one step. Each file is by itself: one that is missing, damaged or not to be written costs the
/// other nothing. A file that did not parse wholly answers its sound cookies and is never written.
/// `files` must outlive the answer.
std::unique_ptr<HTTPCookieStorage> makeSafariCookies(const FileManager& files);

}  // namespace tasselby
