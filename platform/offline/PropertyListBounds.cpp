#include "platform/offline/PropertyListBounds.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tasselby {
namespace {

constexpr std::size_t kMaxDepth = 512;
constexpr std::uint64_t kMaxMemory = std::uint64_t{64} << 20;
// What a node of the parsed tree takes beside its text, rounded up.
constexpr std::uint64_t kNodeMemory = 128;

/// The big-endian number in `bytes`, of which only the last eight count.
std::uint64_t bigEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes.substr(bytes.size() - std::min<std::size_t>(bytes.size(), 8))) {
    number = number << 8 | static_cast<unsigned char>(byte);
  }
  return number;
}

/// A binary list: "bplist00", the objects, the table of their offsets, and a trailer of 32 bytes.
class BinaryList {
 public:
  explicit BinaryList(std::string_view bytes);

  /// Whether the tree below the root object is within bounds.
  bool isWithinBounds() { return visit(root_, 1); }

 private:
  struct Object {
    unsigned kind;
    std::uint64_t size;
    std::string_view rest;
  };

  std::optional<Object> objectAt(std::uint64_t index) const;
  bool visit(std::uint64_t index, std::size_t depth);

  std::string_view objects_;
  std::string_view offsets_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t memory_ = 0;
};

// The upper half of an object's first byte. Those from data on have a size in the lower half; 15
// there means that an integer object with the size follows.
constexpr unsigned kData = 0x4;
constexpr unsigned kArray = 0xA;
constexpr unsigned kSet = 0xC;
constexpr unsigned kDictionary = 0xD;
constexpr std::uint64_t kSizeFollows = 15;

BinaryList::BinaryList(std::string_view bytes) {
  constexpr std::size_t kTrailerSize = 32;
  if (bytes.size() < kTrailerSize) {
    return;
  }
  // Trailer: size of an offset at 6, of a reference at 7; number of objects at 8, index of the
  // root at 16, offset of the table at 24, each in eight bytes.
  const std::string_view trailer = bytes.substr(bytes.size() - kTrailerSize);
  bytes.remove_suffix(kTrailerSize);
  const std::uint64_t table = bigEndian(trailer.substr(24, 8));
  offsetSize_ = bigEndian(trailer.substr(6, 1));
  referenceSize_ = bigEndian(trailer.substr(7, 1));
  root_ = bigEndian(trailer.substr(16, 8));
  if (table > bytes.size() || offsetSize_ == 0 || referenceSize_ == 0) {
    return;
  }
  objects_ = bytes.substr(0, table);
  offsets_ = bytes.substr(table);
  count_ = std::min<std::uint64_t>(bigEndian(trailer.substr(8, 8)), offsets_.size() / offsetSize_);
}

std::optional<BinaryList::Object> BinaryList::objectAt(std::uint64_t index) const {
  if (index >= count_) {
    return std::nullopt;
  }
  const std::uint64_t start = bigEndian(offsets_.substr(index * offsetSize_, offsetSize_));
  if (start >= objects_.size()) {
    return std::nullopt;
  }
  const auto marker = static_cast<unsigned char>(objects_[start]);
  Object object{marker / 16U, marker % 16U, objects_.substr(start + 1)};
  if (object.kind < kData) {
    object.size = 0;
  } else if (object.size == kSizeFollows) {
    const std::size_t width =
        object.rest.empty() ? 0 : std::size_t{1} << (static_cast<unsigned>(object.rest[0]) % 16U);
    if (width >= object.rest.size()) {
      return std::nullopt;
    }
    object.size = bigEndian(object.rest.substr(1, width));
    object.rest.remove_prefix(1 + width);
  }
  return object;
}

bool BinaryList::visit(std::uint64_t index, std::size_t depth) {
  const std::optional<Object> object = objectAt(index);
  if (depth > kMaxDepth || !object || object->size > object->rest.size()) {
    return false;
  }
  // A 16-bit unit of text may take four bytes.
  memory_ += kNodeMemory + 4 * object->size;
  if (memory_ > kMaxMemory) {
    return false;
  }
  std::uint64_t references = 0;
  if (object->kind == kArray || object->kind == kSet) {
    references = object->size;
  } else if (object->kind == kDictionary) {
    references = 2 * object->size;
  }
  if (references > object->rest.size() / referenceSize_) {
    return false;
  }
  for (std::size_t i = 0; i < references; ++i) {
    if (!visit(bigEndian(object->rest.substr(i * referenceSize_, referenceSize_)), depth + 1)) {
      return false;
    }
  }
  return true;
}

/// Whether the containers of an XML list nest within bounds. Never counts fewer than are open: what
/// looks like an opening tag counts wherever it stands, and closing tags count no more once a
/// container holds a comment, an attribute or anything else that could hide one.
bool isShallow(std::string_view text) {
  constexpr const char* kPlain = "/abcdefghijklmnopqrstuvwxyz \t\r\n";
  std::size_t depth = 0;
  bool closingCounts = true;
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
    ++at;
    const std::size_t end = std::min(text.find_first_not_of(kPlain, at), text.size());
    const std::string_view tag = text.substr(at, end - at);
    const bool opens = tag.starts_with("dict") || tag.starts_with("array");
    const bool closes = tag.starts_with("/dict") || tag.starts_with("/array");
    depth += opens ? 1 : 0;
    if (depth > kMaxDepth) {
      return false;
    }
    const bool plain = text.substr(end).starts_with('>');
    closingCounts = closingCounts && (plain || depth == 0);
    if (closingCounts && depth > 0 && (closes || (opens && tag.ends_with('/')))) {
      --depth;
    }
  }
  return true;
}

}  // namespace

bool isWithinBounds(std::string_view bytes) {
  return bytes.starts_with("bplist00") ? BinaryList(bytes).isWithinBounds() : isShallow(bytes);
}

}  // namespace tasselby
