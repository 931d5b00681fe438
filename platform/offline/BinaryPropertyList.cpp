// The binary format: "bplist00", objects, the table of their offsets, a trailer of 32 bytes. All
// numbers are big-endian. The layout is that of the system's published source.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/offline/PropertyList.h"

namespace tasselby {
namespace {

// The upper half of an object's first byte. It is 0 for those that are all in the lower one.
constexpr unsigned kInteger = 0x1;
constexpr unsigned kReal = 0x2;
constexpr unsigned kAscii = 0x5;
constexpr unsigned kUtf16 = 0x6;
constexpr unsigned kDictionary = 0xD;
constexpr unsigned kTrue = 0x9;

/// This size in the lower half means that an integer object with the size follows.
constexpr std::uint64_t kSizeFollows = 15;

constexpr std::size_t kLargestInteger = 16;
constexpr std::size_t kHeader = 8;
constexpr std::size_t kTrailer = 32;

/// `count` bytes of `bytes` from `start` on; no value when that leaves them.
std::optional<std::string_view> part(std::string_view bytes, std::uint64_t start,
                                     std::uint64_t count) {
  return start <= bytes.size() && count <= bytes.size() - start
             ? std::optional(bytes.substr(start, count))
             : std::nullopt;
}

/// The number in `bytes`, at most eight; no value for none.
std::optional<std::uint64_t> number(std::optional<std::string_view> bytes) {
  if (!bytes || bytes->empty() || bytes->size() > sizeof(std::uint64_t)) {
    return std::nullopt;
  }
  std::uint64_t value = 0;
  for (const char byte : *bytes) {
    value = value << 8 | static_cast<unsigned char>(byte);
  }
  return value;
}

/// One object: its kind, the lower half of its first byte, and the bytes behind that, up to the end
/// of all objects.
struct Object {
  unsigned kind;
  unsigned low;
  std::string_view rest;
};

/// As many items of `unit` bytes as the size of `object` says.
std::optional<std::string_view> itemsOf(const Object& object, std::uint64_t unit) {
  std::uint64_t size = object.low;
  std::string_view items = object.rest;
  if (size == kSizeFollows) {
    const std::uint64_t marker = number(part(items, 0, 1)).value_or(0);
    const std::uint64_t width = std::uint64_t{1} << marker % 16;
    const auto following = number(part(items, 1, width));
    if (marker / 16 != kInteger || !following) {
      return std::nullopt;
    }
    size = *following;
    items.remove_prefix(1 + width);
  }
  return size <= items.size() / unit ? part(items, 0, size * unit) : std::nullopt;
}

/// The bytes of a character of `object`; 0 when it is no text.
std::uint64_t unitOf(const Object& object) {
  return object.kind == kAscii ? 1 : object.kind == kUtf16 ? 2 : 0;
}

/// A byte for each character in `items`, itself if it is ASCII and else one that is not.
std::string asciiOf(std::string_view items, std::uint64_t unit) {
  std::string text;
  for (std::size_t i = unit - 1; i < items.size(); i += unit) {
    text += unit == 1 || items[i - 1] == 0 ? items[i] : '\xFF';
  }
  return text;
}

/// The value of `object`; no value when its bytes are not all there.
std::optional<bool> boolOf(const Object& object) {
  const bool isReal = object.kind == kReal && (object.low == 2 || object.low == 3);
  if (const std::uint64_t unit = unitOf(object)) {
    const auto items = itemsOf(object, unit);
    return items ? std::optional(boolValueOfString(asciiOf(*items, unit))) : std::nullopt;
  }
  if (object.kind != kInteger && !isReal) {
    return object.kind == 0 && object.low == kTrue;
  }
  auto digits = part(object.rest, 0, std::uint64_t{1} << object.low);
  if (!digits || digits->size() > kLargestInteger) {
    return std::nullopt;
  }
  // Not the sign of a real: -0 is 0.
  const auto first = static_cast<unsigned char>(isReal ? digits->front() & 0x7F : digits->front());
  return first != 0 || digits->find_first_not_of('\0', 1) != std::string_view::npos;
}

class BinaryList {
 public:
  /// Reads the trailer: size of an offset at 6, of a reference at 7; number of objects at 8, index
  /// of the top at 16, start of the table at 24, each in eight bytes.
  explicit BinaryList(std::string_view bytes) {
    const std::size_t end = bytes.size() - std::min(bytes.size(), kTrailer);
    const auto field = [&](std::size_t at, std::size_t size) {
      return number(part(bytes, end + at, size)).value_or(0);
    };
    offsetSize_ = field(6, 1);
    referenceSize_ = field(7, 1);
    top_ = field(16, 8);
    const std::uint64_t table = field(24, 8);
    if (table <= end && offsetSize_ != 0 && field(8, 8) <= (end - table) / offsetSize_) {
      objects_ = bytes.substr(0, table);
      offsets_ = bytes.substr(table, field(8, 8) * offsetSize_);
    }
  }

  std::optional<bool> boolForKey(std::string_view key) const {
    const auto top = objectAt(top_);
    if (!top || top->kind != kDictionary || referenceSize_ == 0) {
      return std::nullopt;
    }
    // All references to keys, then all to values.
    const std::string_view references = itemsOf(*top, 2 * referenceSize_).value_or("");
    const std::size_t half = references.size() / 2;
    std::optional<std::uint64_t> value;
    for (std::size_t at = 0; at < half; at += referenceSize_) {
      const std::optional<bool> isKey = is(number(part(references, at, referenceSize_)), key);
      if (!isKey) {
        return std::nullopt;
      }
      if (*isKey) {
        value = number(part(references, half + at, referenceSize_));
      }
    }
    const auto object = objectAt(value);
    return object ? boolOf(*object) : std::nullopt;
  }

 private:
  std::optional<Object> objectAt(std::optional<std::uint64_t> index) const {
    if (!index || offsetSize_ == 0 || *index >= offsets_.size() / offsetSize_) {
      return std::nullopt;
    }
    const auto start = number(offsets_.substr(*index * offsetSize_, offsetSize_));
    if (!start || *start < kHeader || *start >= objects_.size()) {
      return std::nullopt;
    }
    const auto marker = static_cast<unsigned char>(objects_[*start]);
    return Object{marker / 16U, marker % 16U, objects_.substr(*start + 1)};
  }

  /// Whether the object at `index` is the text `key`; no value when it is damaged.
  std::optional<bool> is(std::optional<std::uint64_t> index, std::string_view key) const {
    const auto object = objectAt(index);
    if (!object) {
      return std::nullopt;
    }
    const std::uint64_t unit = unitOf(*object);
    const auto items = unit != 0 ? itemsOf(*object, unit) : std::optional<std::string_view>("");
    if (!items) {
      return std::nullopt;
    }
    // The size first: a list may name one long text any number of times.
    return unit != 0 && items->size() == key.size() * unit && asciiOf(*items, unit) == key;
  }

  std::string_view objects_;
  std::string_view offsets_;
  std::uint64_t offsetSize_;
  std::uint64_t referenceSize_;
  std::uint64_t top_;
};

}  // namespace

std::optional<bool> boolInBinaryList(std::string_view bytes, std::string_view key) {
  return BinaryList(bytes).boolForKey(key);
}

}  // namespace tasselby
