// Why a plug-in could not be loaded or driven. Thrown only on control paths (load, create, set-up);
// the message is one line a user can act on, naming the library.
#pragma once

#include <stdexcept>
#include <string>

namespace tarnwell::host {

class PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tarnwell::host
