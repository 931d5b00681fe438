#pragma once

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>

#if __has_feature(objc_arc)
#error "Objects are released by hand: build without -fobjc-arc"
#endif

namespace tasselby {

/// `string` in UTF-8, NUL characters included; empty for nil. A lone surrogate, which UTF-8 lacks,
/// is written in three bytes as if it were a character.
std::string utf8(NSString* string);

/// `text` as an autoreleased string, never nil. Text that is no UTF-8 is read a byte a character,
/// so that nothing of it is lost.
NSString* nsString(std::string_view text);

/// Owns one reference to an object.
class Retained {
 public:
  /// Owns nothing.
  Retained() = default;

  /// Takes over a reference that the caller owns, as +alloc and functions named "Copy" answer it.
  explicit Retained(id owned) : object_(owned) {}
  Retained(const Retained&) = delete;
  Retained& operator=(const Retained&) = delete;
  ~Retained() { [object_ release]; }

  /// The object; nil when there is none.
  id get() const { return object_; }

 private:
  id object_ = nil;
};

}  // namespace tasselby
