#pragma once

#include <string>
#include <vector>

namespace tasselby {

/// Removes the file, link or folder with its contents at `path`, which ends in no "/". A link there
/// or inside goes itself, never what it names, not even when it takes a folder's place meanwhile.
/// What cannot be removed stays, with the folders that it is in, and everything else goes. Holds a
/// file open for each level of the tree.
void removeTree(const std::string& path);

/// Removes everything in the folder at `path` but the entries named in `but`, in the same way.
/// Answers whether nothing else is left; true also for what is no folder or is not there.
bool emptyFolder(const std::string& path, const std::vector<std::string>& but);

}  // namespace tasselby
