#include "platform/SafariCookies.h"

#include <algorithm>
#include <array>
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

#include "platform/BinaryCookies.h"
#include "platform/ReplaceFile.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 2> kCookieFiles = {
    "~/Library/Cookies/Cookies.binarycookies",
    "~/Library/Containers/com.apple.Safari/Data/Library/Cookies/Cookies.binarycookies"};

class SafariCookies final : public HTTPCookieStorage {
 public:
  explicit SafariCookies(const FileManager& files) : files_(files) {
    std::ranges::transform(kCookieFiles, paths_.begin(),
                           [&files](const char* path) { return files.expandTilde(path); });
  }

  std::vector<HTTPCookie> cookies() override {
    synchronize();
    std::vector<HTTPCookie> answer;
    for (std::size_t file = 0; file < paths_.size(); ++file) {
      auto contents = files_.contentsOfFile(paths_[file], kFileLimit);
      std::error_code missing;
      // One file behind both paths is taken once.
      if (contents && (file == 0 || !fs::equivalent(paths_[0], paths_[file], missing))) {
        take(file, *std::move(contents), answer);
      }
    }
    return answer;
  }

  void deleteCookie(const HTTPCookie& cookie) override {
    if (cookie.identity < records_.size()) {
      deleted_[records_[cookie.identity].file].push_back(cookie.identity);
    }
  }

  void synchronize() override {
    for (std::size_t file = 0; file < paths_.size(); ++file) {
      if (!deleted_[file].empty()) {
        rewrite(file);
        deleted_[file].clear();
      }
    }
  }

 private:
  using Places = std::vector<std::uint64_t>;

  /// A record that was answered: its file's place in `kCookieFiles`, and its bytes.
  struct Record {
    std::size_t file;
    std::string_view bytes;
  };

  /// Appends the cookies in `contents`, those of the file `file`, to `answer`.
  void take(std::size_t file, std::string contents, std::vector<HTTPCookie>& answer) {
    const std::string& bytes = read_.emplace_back(std::move(contents));
    for (const BinaryCookie& cookie : parseBinaryCookies(bytes).cookies) {
      answer.push_back({records_.size(), std::string(cookie.name), std::string(cookie.domain)});
      records_.push_back({file, cookie.record});
    }
  }

  /// The file is read again, for another process may have replaced it since: a cookie is deleted
  /// if a record with its very bytes is still there.
  void rewrite(std::size_t file) {
    std::error_code error;
    const std::string path = fs::canonical(paths_[file], error).native();
    const auto contents = error ? std::nullopt : files_.contentsOfFile(path, kFileLimit);
    if (!contents) {
      return;
    }
    const BinaryCookies parsed = parseBinaryCookies(*contents);
    const std::vector<bool> gone = chosenOf(parsed, deleted_[file]);
    if (parsed.parsedWholly && std::ranges::find(gone, true) != gone.end()) {
      replaceFile(path, withoutCookies(*contents, parsed, gone));
    }
  }

  /// For each of `parsed`'s cookies, whether it is among `deleted`, places in `records_` of its
  /// file. Of records with the same bytes, as many as were deleted.
  std::vector<bool> chosenOf(const BinaryCookies& parsed, Places& deleted) const {
    std::ranges::sort(deleted);
    const auto repeated = std::ranges::unique(deleted);
    deleted.erase(repeated.begin(), repeated.end());
    std::vector<bool> gone(parsed.cookies.size());
    // As a rule the file is the same, and its records come in the order in which they were read.
    auto next = deleted.begin();
    for (std::size_t i = 0; i < gone.size() && next != deleted.end(); ++i) {
      if (parsed.cookies[i].record == records_[*next].bytes) {
        gone[i] = true;
        ++next;
      }
    }
    std::unordered_map<std::string_view, std::size_t> missed;
    for (; next != deleted.end(); ++next) {
      ++missed[records_[*next].bytes];
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
  std::array<std::string, kCookieFiles.size()> paths_;
  // Every file that was read, and the records that were answered of them. A cookie's identity is
  // the place of its record.
  std::list<std::string> read_;
  std::vector<Record> records_;
  std::array<Places, kCookieFiles.size()> deleted_;
};

}  // namespace

std::unique_ptr<HTTPCookieStorage> makeSafariCookies(const FileManager& files) {
  return std::make_unique<SafariCookies>(files);
}

}  // namespace tasselby
