#include "app/KeepList.h"

namespace tasselby {

KeepList::KeepList(std::initializer_list<std::string> sites) {
  for (const std::string& site : sites) {
    add(site);
  }
}

void KeepList::add(const std::string& site, const std::string& source) {
  if (sources_.emplace(site, source).second) {
    sites_.push_back(site);
  }
}

bool KeepList::contains(const std::optional<std::string>& site) const {
  return site && sources_.contains(*site);
}

}  // namespace tasselby
