#pragma once

#include <string>
#include <vector>

namespace tasselby {

/// What the platform's main routine calls back during a start, each once and in this order.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;

  /// The delegate has been created and connected.
  virtual void awakeFromNib() = 0;

  /// The application has launched. May throw `HardError`.
  virtual void applicationDidFinishLaunching() = 0;
};

/// The running process as the system sees it.
class Application {
 public:
  virtual ~Application() = default;

  /// The process's arguments in order, the program path first.
  virtual std::vector<std::string> arguments() const = 0;

  /// Ends the process with status 0. Does not return.
  virtual void terminate() = 0;
};

}  // namespace tasselby
