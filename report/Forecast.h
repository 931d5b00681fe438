#pragma once

#include <string>
#include <vector>

#include "platform/FileManager.h"
#include "report/Changes.h"
#include "report/ScratchFolder.h"

namespace tasselby {

/// What a run with `arguments`, the program path first, over the home that `files` shows would come
/// to: the worker's own delegate, run over a stand-in in `scratch`. Changes nothing in the home.
/// One of `arguments` is a browser name. Throws `std::runtime_error` where `scratch` has no room.
RunResult forecast(std::vector<std::string> arguments, const FileManager& files,
                   const ScratchFolder& scratch);

}  // namespace tasselby
