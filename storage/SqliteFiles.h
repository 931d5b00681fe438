#pragma once

#include <string>

struct sqlite3;

namespace tasselby {

/// Opens `path` for reading and writing, creating it when missing, and answers SQLite's result
/// code. `connection` is set after most failures too.
///
/// Of a database's own file and those beside it only plain ones are opened, links followed, and no
/// other file is removed, whatever they say. As in SQLite, "" is a temporary database and
/// ":memory:" one without a file.
int openDatabase(const std::string& path, sqlite3*& connection);

}  // namespace tasselby
