#include "app/LocalState.h"

#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace tasselby {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kDepthLimit = 512;

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
    if (depth_ <= keys_.size()) {
      keys_.at(depth_ - 1) = name;
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
    if (depth_ == 0 || depth_ > keys_.size() || keys_[0] != "profile" ||
        (depth_ > 1 && keys_[1] != "info_cache")) {
      return true;
    }
    if (depth_ <= 2) {
      profiles.clear();
    } else if (depth_ == 3 && keys_[2]) {
      profiles.erase(*keys_[2]);
    } else if (depth_ == 4 && keys_[2] && keys_[3] == "name") {
      profiles.erase(*keys_[2]);
      if (text != nullptr) {
        profiles.emplace(*keys_[2], *text);
      }
    }
    return true;
  }

  /// `firstKey` has no value for an array, whose elements have no keys.
  bool enter(const std::optional<std::string>& firstKey) {
    value(nullptr);
    if (++depth_ <= keys_.size()) {
      keys_.at(depth_ - 1) = firstKey;
    }
    return depth_ <= kDepthLimit;
  }

  bool leave() {
    --depth_;
    return true;
  }

  std::array<std::optional<std::string>, 4> keys_;
  std::size_t depth_ = 0;
};

}  // namespace

ProfileMap profilesInLocalState(const std::string& text) {
  ProfileReader reader;
  return Json::sax_parse(text, &reader) ? reader.profiles : ProfileMap{};
}

}  // namespace tasselby
