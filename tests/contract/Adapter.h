#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace tasselby {

/// The adapter under test. A test program has one of the two, over the home folder `$HOME`.

/// Makes the delegate over the adapter and launches it, as the adapter's main routine does.
void runAdapter(int argc, char** argv, DelegateFactory makeDelegate);

/// What the user is shown while `step` runs: title and text of each notification, "|" between.
std::vector<std::string> shownDuring(const std::function<void()>& step);

}  // namespace tasselby
