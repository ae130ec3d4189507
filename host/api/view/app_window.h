#pragma once

namespace host::api {

/// The program's own window, a service of the session; without one the handle is null.
struct ApplicationWindow {
  void* shell = nullptr;
};

}  // namespace host::api
