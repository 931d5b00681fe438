#include "platform/SafariCookies.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <list>
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
    for (const std::string& path : paths_) {
      auto contents = files_.contentsOfFile(path, kFileLimit);
      std::error_code missing;
      // One file behind both paths is taken once.
      if (contents &&
          (&path == &paths_.front() || !fs::equivalent(paths_.front(), path, missing))) {
        take(path, *std::move(contents), answer);
      }
    }
    return answer;
  }

  void deleteCookie(const HTTPCookie& cookie) override {
    if (cookie.identity < records_.size()) {
      records_[cookie.identity].isDeleted = true;
    }
  }

  void synchronize() override {
    for (const std::string& path : paths_) {
      Deletions deletions;
      for (Record& record : records_) {
        if (record.path == &path && std::exchange(record.isDeleted, false)) {
          ++deletions[record.bytes];
        }
      }
      if (!deletions.empty()) {
        rewrite(path, deletions);
      }
    }
  }

 private:
  /// A record that was answered: its file, one of `paths_`, and its bytes.
  struct Record {
    const std::string* path;
    std::string_view bytes;
    bool isDeleted;
  };

  /// How many records with the same bytes are to go.
  using Deletions = std::unordered_map<std::string_view, std::size_t>;

  /// Appends the cookies in `contents`, those of the file at `path`, to `answer`.
  void take(const std::string& path, std::string contents, std::vector<HTTPCookie>& answer) {
    const std::string& bytes = read_.emplace_back(std::move(contents));
    for (const BinaryCookie& cookie : parseBinaryCookies(bytes).cookies) {
      answer.push_back({records_.size(), std::string(cookie.name), std::string(cookie.domain)});
      records_.push_back({&path, cookie.record, false});
    }
  }

  /// The file is read again, for another process may have replaced it since: a cookie is deleted
  /// if a record with its very bytes is still there.
  void rewrite(const std::string& path, Deletions& deletions) const {
    std::error_code missing;
    const std::string target = fs::canonical(path, missing).native();
    const std::string contents = files_.contentsOfFile(target, kFileLimit).value_or("");
    const BinaryCookies parsed = parseBinaryCookies(contents);
    std::vector<bool> gone;
    for (const BinaryCookie& cookie : parsed.cookies) {
      const auto found = deletions.find(cookie.record);
      gone.push_back(found != deletions.end() && found->second != 0);
      if (gone.back()) {
        --found->second;
      }
    }
    if (parsed.parsedWholly && std::ranges::find(gone, true) != gone.end()) {
      replaceFile(target, withoutCookies(contents, parsed, gone));
    }
  }

  const FileManager& files_;
  std::array<std::string, kCookieFiles.size()> paths_;
  // Every file that was read, and the records that were answered of them. A cookie's identity is
  // the place of its record.
  std::list<std::string> read_;
  std::vector<Record> records_;
};

}  // namespace

std::unique_ptr<HTTPCookieStorage> makeSafariCookies(const FileManager& files) {
  return std::make_unique<SafariCookies>(files);
}

}  // namespace tasselby
