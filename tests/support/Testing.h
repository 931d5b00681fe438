#pragma once

// What all tests use.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sqlite3.h>
#include <string>
#include <vector>

#include "samples/MacHome.h"
#include "samples/PlainSqlite.h"
#include "samples/RunWorker.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace fs = std::filesystem;

inline const std::string kSupport = "Library/Application Support/";

}  // namespace tasselby
