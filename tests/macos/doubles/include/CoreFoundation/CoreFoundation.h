#pragma once

// Stands in for the header of that name: of CoreFoundation there is nothing.

// A Mac's is a variable, the running system's own version. This is the first with notifications.
inline constexpr double kCFCoreFoundationVersionNumber = 744.0;
