#include "storage/SecureDelete.h"

#include <algorithm>
#include <array>
#include <climits>
#include <random>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace tasselby {
namespace {

using Buffer = std::array<std::uint8_t, 1024>;

constexpr std::array<std::int32_t, 3> kPhases = {1, 2, 3};

/// Fills `buffer` for `phase`; false for a phase there is not.
bool fill(Buffer& buffer, std::int32_t phase) {
  switch (phase) {
    case 1:
      buffer.fill(0x55);
      return true;
    case 2:
      buffer.fill(0xAA);
      return true;
    case 3: {
      std::mt19937 random(std::random_device{}());
      std::ranges::generate(buffer,
                            [&random] { return static_cast<std::uint8_t>(random() % 255); });
      return true;
    }
    default:
      return false;
  }
}

/// Writes `buffer` again and again from where `descriptor` stands until `remaining` is 0.
///
/// One call writes the buffer many times over: written singly, each would make the kernel read the
/// page it falls in first. What a call wrote in part goes on from the buffer's start.
void cover(int descriptor, Buffer& buffer, std::uint32_t remaining) {
  std::array<iovec, std::min(IOV_MAX, 1024)> pieces{};
  auto most = pieces.size();
  while (remaining != 0) {
    std::uint32_t gathered = 0;
    int count = 0;
    while (gathered != remaining && count != static_cast<int>(most)) {
      const std::uint32_t length =
          std::min(remaining - gathered, static_cast<std::uint32_t>(buffer.size()));
      pieces.at(static_cast<std::size_t>(count++)) = {buffer.data(), length};
      gathered += length;
    }
    // Deliberate: a failed write is no error. Its -1 is subtracted like any other result, and the
    // loop ends only when the count is exactly 0.
    const ssize_t result = ::writev(descriptor, pieces.data(), count);
    remaining -= static_cast<std::uint32_t>(result);
    // Where nothing can be written, gathering would only make the long way to 0 longer.
    most = result > 0 ? pieces.size() : 1;
  }
}

bool wipeFile(const FileManager& files, const std::string& path) {
  return std::ranges::all_of(
      kPhases, [&](std::int32_t phase) { return SecureDelete::wipe_phase(files, path, phase); });
}

}  // namespace

bool SecureDelete::wipe(const FileManager& files, const std::string& path) {
  if (!files.fileExistsAtPath(path)) {
    return true;
  }
  if (!files.isFolderAtPath(path)) {
    return wipeFile(files, path);
  }
  // Deliberate: the test is on the folder and not on the item, so the walk visits everything and
  // overwrites nothing. What is in a folder is removed without being overwritten.
  return files.enumerateDeep(path, [&files, &path](const std::string& item) {
    const bool overwrite = files.fileExistsAtPath(path) && !files.isFolderAtPath(path);
    return !overwrite || wipeContentsofDir(files, item);
  });
}

bool SecureDelete::wipeContentsofDir(const FileManager& files, const std::string& path) {
  return !files.fileExistsAtPath(path) || wipeFile(files, path);
}

bool SecureDelete::wipe_phase(const FileManager& files, const std::string& path,
                              std::int32_t phase) {
  const int descriptor = files.openForOverwriting(path);
  if (descriptor < 0) {
    return false;
  }
  // Deliberate: the descriptor stays open on the two ways out before the writing.
  struct stat status{};
  if (::fstat(descriptor, &status) != 0) {
    return false;
  }
  Buffer buffer;
  if (!fill(buffer, phase)) {
    return false;
  }
  // Deliberate: only the low 32 bits of the size count.
  cover(descriptor, buffer, static_cast<std::uint32_t>(status.st_size));
  return ::close(descriptor) == 0;
}

}  // namespace tasselby
