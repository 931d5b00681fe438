#include "platform/Paths.h"

#include <cstddef>

namespace tasselby {

std::string join(const std::string& base, std::string_view component) {
  while (component.starts_with('/')) {
    component.remove_prefix(1);
  }
  while (component.ends_with('/')) {
    component.remove_suffix(1);
  }
  if (component.empty()) {
    return base;
  }
  std::string path = base;
  while (path.ends_with('/')) {
    path.pop_back();
  }
  path += '/';
  path += component;
  return path;
}

bool staysBelow(std::string_view component) {
  if (component.find('\0') != std::string_view::npos) {
    return false;
  }
  while (true) {
    const std::size_t slash = component.find('/');
    const std::string_view part = component.substr(0, slash);
    if (part == ".." || part == ".") {
      return false;
    }
    if (slash == std::string_view::npos) {
      return true;
    }
    component.remove_prefix(slash + 1);
  }
}

std::string_view withoutExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace tasselby
