#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "app/LocalState.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const ProfileMap profiles = profilesInLocalState(text);
  if (profiles.empty()) {
    return 0;
  }
  // The tree of the whole document must say the same. One with profiles is not too deep for it.
  const nlohmann::json tree = nlohmann::json::parse(text, nullptr, false);
  ProfileMap expected;
  for (const auto& [folder, profile] : tree["profile"]["info_cache"].items()) {
    if (profile.is_object() && profile.contains("name") && profile["name"].is_string()) {
      expected.emplace(folder, profile["name"].get<std::string>());
    }
  }
  check(profiles == expected);
  return 0;
}
