// Preferences from the command line and from property lists in the home folder.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/offline/ArgumentDomain.h"
#include "platform/offline/OfflinePlatform.h"
#include "platform/offline/PropertyList.h"

namespace tasselby {
namespace {

constexpr const char* kOwnDomain = "com.marrowgatestudios.Tasselby.Worker";

class OfflineUserDefaults final : public UserDefaults {
 public:
  OfflineUserDefaults(std::vector<std::string> arguments, const FileManager& files)
      : arguments_(std::move(arguments)), files_(files) {}

  void addSuiteNamed(const std::string& suite) override { names_.push_back(suite); }

  bool boolForKey(const std::string& key) const override {
    readDomains();
    if (const auto argument = argumentDomain_->find(key); argument != argumentDomain_->end()) {
      return argument->second;
    }
    // Deliberate: the first domain that has the key decides, though its value be no boolean.
    for (const std::string& domain : domains_) {
      if (const std::optional<bool> value = boolInPropertyList(domain, key)) {
        return *value;
      }
    }
    return false;
  }

 private:
  /// Reads what has not been read yet: at the first question all, afterwards only suites added
  /// since. A file that cannot be read is an empty domain.
  void readDomains() const {
    if (!argumentDomain_) {
      argumentDomain_ = argumentDomain(arguments_);
    }
    while (domains_.size() < names_.size()) {
      const std::string path =
          files_.expandTilde("~/Library/Preferences/" + names_[domains_.size()] + ".plist");
      domains_.emplace_back(files_.contentsOfFile(path, kFileLimit).value_or(""));
    }
  }

  std::vector<std::string> arguments_;
  const FileManager& files_;
  /// The domains that have files, in search order.
  std::vector<std::string> names_ = {kOwnDomain};
  /// Those that have been read.
  mutable std::vector<std::string> domains_;
  mutable std::optional<std::map<std::string, bool>> argumentDomain_;
};

}  // namespace

std::unique_ptr<UserDefaults> makeOfflineUserDefaults(std::vector<std::string> arguments,
                                                      const FileManager& files) {
  return std::make_unique<OfflineUserDefaults>(std::move(arguments), files);
}

}  // namespace tasselby
