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
  OfflineUserDefaults(const std::vector<std::string>& arguments, const FileManager& files)
      : argumentDomain_(argumentDomain(arguments)), files_(files) {}

  void addSuiteNamed(const std::string& suite) override { unread_.push_back(suite); }

  bool boolForKey(const std::string& key) const override {
    readDomains();
    if (const auto argument = argumentDomain_.find(key); argument != argumentDomain_.end()) {
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
  /// since. A file that cannot be read is no domain.
  void readDomains() const {
    for (const std::string& name : std::exchange(unread_, {})) {
      const std::string path = files_.expandTilde("~/Library/Preferences/" + name + ".plist");
      if (std::optional<std::string> list = files_.contentsOfFile(path, kFileLimit)) {
        domains_.push_back(*std::move(list));
      }
    }
  }

  std::map<std::string, bool> argumentDomain_;
  const FileManager& files_;
  /// The names of the domains whose files have not been read.
  mutable std::vector<std::string> unread_ = {kOwnDomain};
  /// The property lists that were read, in search order.
  mutable std::vector<std::string> domains_;
};

}  // namespace

std::unique_ptr<UserDefaults> makeOfflineUserDefaults(const std::vector<std::string>& arguments,
                                                      const FileManager& files) {
  return std::make_unique<OfflineUserDefaults>(arguments, files);
}

}  // namespace tasselby
