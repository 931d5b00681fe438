// From a host name to the site it belongs to. No list of public suffixes is used: the length of the
// last label decides how many labels make a site.

#include <string>
#include <string_view>

#include "keep/WorkerExtras.h"
#include "platform/Text.h"

namespace tasselby {
namespace {

/// How many labels at the end of a host name make its site when `lastLabel` is the last.
int labelsKept(std::string_view lastLabel) {
  return utf16Length(lastLabel) == 3 ? 2 : 3;
}

/// Where the last `labels` labels of `name` begin; 0 when it has no more than that.
std::size_t startOfLast(int labels, std::string_view name) {
  for (int label = 0; label < labels; ++label) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) {
      return 0;
    }
    name = name.substr(0, dot);
  }
  return name.size() + 1;
}

}  // namespace

std::optional<std::string> WorkerExtras::siteWithDomainName(
    const std::optional<std::string>& domain) {
  if (!domain) {
    return std::nullopt;
  }
  const std::string name = lowerCase(*domain);
  // Deliberate: a lone "^" is a name like any other; before a name it marks what is of no site.
  if (name.find("file:///") != std::string::npos || (name.size() > 1 && name.front() == '^')) {
    return std::nullopt;
  }
  // Deliberate: one dot and one "www.", each once and in this order. Further ones are the site's.
  std::string_view site = name;
  if (site.starts_with('.')) {
    site.remove_prefix(1);
  }
  if (site.starts_with("www.")) {
    site.remove_prefix(4);
  }

  const std::string_view lastLabel = site.substr(startOfLast(1, site));
  // Deliberate: an address, a name with a dot at its end and a single label are left whole: the
  // last label of each does not tell how many make a site.
  if (lastLabel.size() != site.size() && !isAllDecimalDigits(lastLabel)) {
    site.remove_prefix(startOfLast(labelsKept(lastLabel), site));
  }
  return std::string(site);
}

}  // namespace tasselby
