#include "app/LocalState.h"

#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace tasselby {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kDepthLimit = 512;

// How many objects and arrays are open around a value whose last key is "profile", "info_cache", a
// folder's name or "name".
constexpr std::size_t kProfile = 1;
constexpr std::size_t kInfoCache = 2;
constexpr std::size_t kFolder = 3;
constexpr std::size_t kName = 4;

/// Collects the strings at profile.info_cache.*.name while the text is read. No tree is built:
/// destroying a deeply nested one can exhaust the stack.
///
/// Of two equal keys in one object the later replaces the earlier, with all that was in it.
class ProfileReader final : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return value(nullptr); }
  bool boolean(bool /*value*/) override { return value(nullptr); }
  bool number_integer(number_integer_t /*value*/) override { return value(nullptr); }
  bool number_unsigned(number_unsigned_t /*value*/) override { return value(nullptr); }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override {
    return value(nullptr);
  }
  bool string(string_t& text) override { return value(&text); }
  bool binary(binary_t& /*value*/) override { return value(nullptr); }
  bool start_object(std::size_t /*size*/) override { return enter(""); }
  bool start_array(std::size_t /*size*/) override { return enter(std::nullopt); }
  bool end_object() override { return leave(); }
  bool end_array() override { return leave(); }
  bool key(string_t& name) override {
    if (depth_ <= kName) {
      keys_.at(depth_) = name;
    }
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const Json::exception& /*error*/) override {
    return false;
  }

  ProfileMap profiles;

 private:
  /// A value begins where the keys now stand; `text` is it, if it is a string.
  bool value(const std::string* text) {
    const std::optional<std::string>& folder = keys_[kFolder];
    if (depth_ < kProfile || depth_ > kName || keys_[kProfile] != "profile" ||
        (depth_ >= kInfoCache && keys_[kInfoCache] != "info_cache")) {
      return true;
    }
    if (depth_ < kFolder) {
      profiles.clear();
    } else if (folder && (depth_ == kFolder || keys_[kName] == "name")) {
      profiles.erase(*folder);
      if (depth_ == kName && text != nullptr) {
        profiles.emplace(*folder, *text);
      }
    }
    return true;
  }

  /// `firstKey` has no value for an array, whose elements have no keys.
  bool enter(const std::optional<std::string>& firstKey) {
    value(nullptr);
    if (++depth_ <= kName) {
      keys_.at(depth_) = firstKey;
    }
    return depth_ <= kDepthLimit;
  }

  bool leave() {
    --depth_;
    return true;
  }

  /// The last key at each depth.
  std::array<std::optional<std::string>, kName + 1> keys_;
  std::size_t depth_ = 0;
};

}  // namespace

ProfileMap profilesInLocalState(const std::string& text) {
  ProfileReader reader;
  return Json::sax_parse(text, &reader) ? reader.profiles : ProfileMap{};
}

}  // namespace tasselby
