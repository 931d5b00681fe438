#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "samples/MacHome.h"
#include "samples/RunWorker.h"
#include "samples/SampleStores.h"

namespace tasselby {

/// How the preloaded library is to disturb a run. See FailingCalls.cpp.
struct Disturbance {
  /// The library that is preloaded.
  std::string preload;
  /// The calls' names, each with a "," behind it.
  std::string calls;
  /// The error number; 0 kills.
  int error = 0;
  /// Of the calls that count, every which one; with `once` the one at that place alone.
  long every = 1;
  bool once = false;
  /// Calls count from the first on a path with one of these in it, each with a "," behind it;
  /// empty: from the start.
  std::string from = {};
};

/// Copies of one sample home, each for one disturbed run, and what must hold of them afterwards.
class Trial : public ::testing::Test {
 protected:
  Trial();
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;
  ~Trial() override;

  /// Makes the home anew, as it was before any run.
  void reset();

  /// The home under trial.
  MacHome& home() { return *home_; }

  /// The full path of `name` beside it.
  std::string scratch(const std::string& name) const { return (folder_ / name).native(); }

  /// Runs the worker over the home, disturbed or not.
  WorkerRun run(const std::vector<std::string>& arguments,
                const std::optional<Disturbance>& disturbance = std::nullopt) const;

  /// Starts the worker over the home and answers its process.
  pid_t start(const std::vector<std::string>& arguments) const;

  /// Expects everything that a run for `browser` keeps, `exceptStore` aside, to hold what it held
  /// at first, and every database and cookie file to be sound.
  void expectKept(const std::string& browser, const std::string& label,
                  const std::string& exceptStore = "") const;
  void expectSound(const std::string& label) const;

  /// Expects that nothing is left of what a run for `browser` removes, `exceptStores` aside.
  void expectFinished(const std::string& browser, const std::string& label,
                      const std::vector<std::string>& exceptStores) const;

  /// How many runs each test makes is multiplied by this: PROOF_ROUNDS in the environment, or 1.
  static long rounds();

 private:
  std::filesystem::path folder_;
  std::optional<MacHome> original_;
  std::optional<MacHome> home_;
  std::vector<std::optional<std::string>> contents_;
};

}  // namespace tasselby
