#pragma once

namespace tasselby {

/// Lets this process hold as many files open as the system allows it: a removal holds one for each
/// level of a tree.
void raiseOpenFileLimit();

}  // namespace tasselby
