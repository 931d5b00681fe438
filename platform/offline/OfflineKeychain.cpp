// Saved passwords from the user's keychain file, answered as the system's own search does.

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/KeychainAttributeCodes.h"
#include "platform/Text.h"
#include "platform/offline/KeychainFile.h"
#include "platform/offline/OfflinePlatform.h"

namespace tasselby {
namespace {

constexpr const char* kKeychain = "~/Library/Keychains/login.keychain-db";
constexpr const char* kOlderKeychain = "~/Library/Keychains/login.keychain";

// The authentication types that the system's search knows. It leaves out any other.
constexpr std::array<std::string_view, 8> kAuthenticationTypes = {"ntlm", "msna", "dpaa", "rpaa",
                                                                  "http", "httd", "form", "dflt"};

using Bytes = std::optional<std::string_view>;

/// Puts `value` under `code`, unless it is no text or empty.
void addText(KeychainAttributes& attributes, const char* code, const Bytes& value) {
  if (value && !value->empty() && isValidUtf8(*value)) {
    attributes.emplace(code, *value);
  }
}

KeychainAttributes attributesOf(const InternetPassword& item) {
  KeychainAttributes attributes;
  addText(attributes, kAccountCode, item.account);
  addText(attributes, kServerCode, item.server);
  // Only the first four bytes count.
  const Bytes type = item.authenticationType ? item.authenticationType->substr(0, 4) : Bytes();
  if (type && std::ranges::find(kAuthenticationTypes, *type) != kAuthenticationTypes.end()) {
    attributes.emplace(kAuthenticationTypeCode, *type);
  }
  return attributes;
}

class OfflineKeychain final : public Keychain {
 public:
  explicit OfflineKeychain(const FileManager& files) : files_(files) {}

  Answer copyMatching(const KeychainQuery& query) const override {
    Answer answer;
    // An internet password has no service, so that none matches one.
    const auto bytes = query.service ? std::nullopt : keychain();
    if (!bytes) {
      return answer;
    }
    KeychainFile file(*bytes);
    while (const auto item = file.next()) {
      KeychainAttributes attributes = attributesOf(*item);
      const auto account = attributes.find(kAccountCode);
      if (query.account && (account == attributes.end() || account->second != query.account)) {
        continue;
      }
      answer.status = kSuccess;
      if (query.returnAttributes) {
        answer.items.push_back(std::move(attributes));
      }
      if (query.matchLimit == KeychainQuery::MatchLimit::kOne) {
        break;
      }
    }
    return answer;
  }

 private:
  /// The bytes of the keychain file; no value when it is missing or cannot be read.
  std::optional<std::string> keychain() const {
    const std::string path = files_.expandTilde(kKeychain);
    // Deliberate: one that is there hides the older one even if it is damaged or no file.
    return files_.contentsOfFile(
        files_.fileExistsAtPath(path) ? path : files_.expandTilde(kOlderKeychain), kFileLimit);
  }

  const FileManager& files_;
};

}  // namespace

std::unique_ptr<Keychain> makeOfflineKeychain(const FileManager& files) {
  return std::make_unique<OfflineKeychain>(files);
}

}  // namespace tasselby
