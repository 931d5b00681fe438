#include "keep/KeepList.h"

namespace tasselby {

KeepList::KeepList(std::initializer_list<std::string> sites) {
  for (const std::string& site : sites) {
    add(site);
  }
}

void KeepList::add(const std::string& site) {
  if (members_.insert(site).second) {
    sites_.push_back(site);
  }
}

bool KeepList::contains(const std::optional<std::string>& site) const {
  return site && members_.contains(*site);
}

}  // namespace tasselby
