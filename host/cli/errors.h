// The two ways a command fails, by exit code: what the user asked for cannot be done as asked (1),
// or the work itself failed on a file or the plug-in (2). Either carries one line for stderr.
#pragma once

#include <stdexcept>

namespace tarnwell::cli {

enum ExitCode : int { kExitSuccess = 0, kExitUsage = 1, kExitFailure = 2 };

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class RunError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tarnwell::cli
