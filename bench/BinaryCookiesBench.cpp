// Deleting half of 50,000 cookies from the system's shared storage, against reading the same file
// and writing its bytes once, as durably: a new file, flushed to the disk and renamed over the old.
// Prints the ratio of the medians; it may be 3 at most.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "platform/offline/OfflinePlatform.h"
#include "platform/offline/ReplaceFile.h"
#include "samples/BinaryCookieWriter.h"
#include "tests/support/TestHome.h"

namespace {

using namespace tasselby;

constexpr const char* kPath = "Library/Cookies/Cookies.binarycookies";
constexpr int kCookies = 50000;
constexpr int kRounds = 21;

std::string sampleFile() {
  std::vector<SampleCookie> cookies;
  cookies.reserve(kCookies);
  for (int i = 0; i < kCookies; ++i) {
    cookies.push_back({"www." + std::to_string(i / 5) + ".example", "name" + std::to_string(i),
                       "a value of ordinary length " + std::to_string(i)});
  }
  return binaryCookieFile(cookies);
}

double milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

double median(std::vector<double> times) {
  std::ranges::sort(times);
  return times[times.size() / 2];
}

}  // namespace

int main() {
  TestHome home;
  const FileManager files(home.home());
  const std::string sample = sampleFile();
  std::vector<double> deleting;
  std::vector<double> copying;
  for (int round = 0; round < kRounds; ++round) {
    home.file(kPath, sample);
    copying.push_back(milliseconds([&home, &sample] {
      const auto bytes = FileManager::contentsOfFile(home.path(kPath), sample.size());
      replaceFile(home.path(kPath), bytes.value_or(""));
    }));
    deleting.push_back(milliseconds([&files] {
      const auto storage = makeOfflineCookieStorage(files);
      const std::vector<HTTPCookie> cookies = storage->cookies();
      for (std::size_t i = 0; i < cookies.size(); i += 2) {
        storage->deleteCookie(cookies[i]);
      }
      storage->synchronize();
    }));
  }
  std::printf("half of %d cookies deleted: %.1f ms, read and written once: %.1f ms, ratio %.2f\n",
              kCookies, median(deleting), median(copying), median(deleting) / median(copying));
}
