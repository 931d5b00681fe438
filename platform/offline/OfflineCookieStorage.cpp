// Safari's cookies, read from and written to the file of the system's shared storage.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/offline/BinaryCookies.h"
#include "platform/offline/OfflinePlatform.h"
#include "platform/offline/ReplaceFile.h"

namespace tasselby {
namespace {

constexpr const char* kCookieFile = "~/Library/Cookies/Cookies.binarycookies";

// Real files have a few kilobytes to a few megabytes.
constexpr std::size_t kFileLimit = std::size_t{64} << 20;

class OfflineCookieStorage final : public HTTPCookieStorage {
 public:
  explicit OfflineCookieStorage(const FileManager& files) : files_(files) {}

  std::vector<HTTPCookie> cookies() override {
    synchronize();
    std::vector<HTTPCookie> answer;
    auto file = FileManager::contentsOfFile(files_.expandTilde(kCookieFile), kFileLimit);
    if (!file) {
      return answer;
    }
    const std::string& bytes = read_.emplace_back(std::move(*file));
    const BinaryCookies parsed = parseBinaryCookies(bytes);
    answer.reserve(parsed.cookies.size());
    for (const BinaryCookie& cookie : parsed.cookies) {
      answer.push_back({records_.size(), std::string(cookie.name), std::string(cookie.domain)});
      records_.push_back(cookie.record);
    }
    return answer;
  }

  void deleteCookie(const HTTPCookie& cookie) override {
    if (cookie.identity < records_.size()) {
      deleted_.push_back(cookie.identity);
    }
  }

  void synchronize() override {
    if (!deleted_.empty()) {
      rewrite();
      deleted_.clear();
    }
  }

 private:
  /// The file is read again, for another process may have replaced it since: a cookie is deleted
  /// if a record with its very bytes is still there.
  void rewrite() {
    std::error_code error;
    const std::string path =
        std::filesystem::canonical(files_.expandTilde(kCookieFile), error).native();
    const auto file = error ? std::nullopt : FileManager::contentsOfFile(path, kFileLimit);
    if (!file) {
      return;
    }
    const BinaryCookies parsed = parseBinaryCookies(*file);
    const std::vector<bool> gone = chosenOf(parsed);
    if (parsed.parsedWholly && std::ranges::find(gone, true) != gone.end()) {
      replaceFile(path, withoutCookies(*file, parsed, gone));
    }
  }

  /// For each of `parsed`'s cookies, whether it is deleted. Of records with the same bytes, as many
  /// as were deleted.
  std::vector<bool> chosenOf(const BinaryCookies& parsed) {
    std::sort(deleted_.begin(), deleted_.end());
    deleted_.erase(std::unique(deleted_.begin(), deleted_.end()), deleted_.end());
    std::vector<bool> gone(parsed.cookies.size());
    // As a rule the file is the same, and its records come in the order in which they were read.
    auto next = deleted_.begin();
    for (std::size_t i = 0; i < gone.size() && next != deleted_.end(); ++i) {
      if (parsed.cookies[i].record == records_[*next]) {
        gone[i] = true;
        ++next;
      }
    }
    std::unordered_map<std::string_view, std::size_t> missed;
    for (; next != deleted_.end(); ++next) {
      ++missed[records_[*next]];
    }
    for (std::size_t i = 0; i < gone.size() && !missed.empty(); ++i) {
      const auto found = gone[i] ? missed.end() : missed.find(parsed.cookies[i].record);
      if (found != missed.end() && found->second != 0) {
        gone[i] = true;
        --found->second;
      }
    }
    return gone;
  }

  const FileManager& files_;
  // Every file that was read, and the records that were answered of them. A cookie's identity is
  // the place of its record.
  std::list<std::string> read_;
  std::vector<std::string_view> records_;
  std::vector<std::uint64_t> deleted_;
};

}  // namespace

std::unique_ptr<HTTPCookieStorage> makeOfflineCookieStorage(const FileManager& files) {
  return std::make_unique<OfflineCookieStorage>(files);
}

}  // namespace tasselby
