#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>

#include "keep/WorkerExtras.h"

namespace tasselby {
namespace {

// U+1F600: two 16-bit units.
const std::string kFace = "\xF0\x9F\x98\x80";

TEST(SiteName, ReducesHostsToSites) {
  const std::map<std::string, std::optional<std::string>> siteByHost = {
      {"www.Example.COM", "example.com"},
      {"news.example.co.uk", "example.co.uk"},
      {"x.shop.example.info", "shop.example.info"},
      {"192.168.1.10", "192.168.1.10"},
      {"localhost", "localhost"},
      {"EXAMPLE.com.", "example.com."},
      {"..example.com", "example.com"},
      {".www.example.com", "example.com"},
      {"www.www.example.de", "www.example.de"},
      {"www.example.com:8080", "example.com:8080"},
      {"www.x.y.1a2", "y.1a2"},
      {"...x.info", ".x.info"},
      {"https://example.com", "https://example.com"},
      {"file:///Users/a", std::nullopt},
      {"a.FILE:///b", std::nullopt},
      {"^abc", std::nullopt},
      {"^", "^"},
      {".^a", "^a"},
      {"", ""},
      {".", ""},
      // Lengths are in 16-bit units; lower case and decimal digits are those of all scripts.
      {"A.B.C." + kFace + "x", "c." + kFace + "x"},
      {"a.b.\xC3\x84\xC3\x96\xC3\x9C", "b.\xC3\xA4\xC3\xB6\xC3\xBC"},
      {"a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3", "a.b.c.\xD9\xA1\xD9\xA2\xD9\xA3"},
      // Bytes that are no text stay as they are, a unit each.
      {"A.\xFF.\xFE\xC3Z", "\xFF.\xFE\xC3z"},
      {"A.b.c.\xFF\xF0\x9F\x98", "b.c.\xFF\xF0\x9F\x98"}};
  for (const auto& [host, site] : siteByHost) {
    EXPECT_EQ(WorkerExtras::siteWithDomainName(host), site) << host;
  }
  EXPECT_EQ(WorkerExtras::siteWithDomainName(std::nullopt), std::nullopt);
}

}  // namespace
}  // namespace tasselby
