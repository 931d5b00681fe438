#include "platform/Paths.h"

#include <cstddef>

namespace tasselby {

std::string join(const std::string& base, std::string_view component) {
  const std::size_t first = component.find_first_not_of('/');
  if (first == std::string_view::npos) {
    return base;
  }
  const std::size_t behind = component.find_last_not_of('/') + 1;
  return base.substr(0, base.find_last_not_of('/') + 1)
      .append("/")
      .append(component.substr(first, behind - first));
}

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

bool staysBelow(std::string_view component) {
  const std::string parts = std::string("/").append(component).append("/");
  return parts.find("/./") == std::string::npos && parts.find("/../") == std::string::npos &&
         parts.find('\0') == std::string::npos;
}

std::string_view withoutExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace tasselby
