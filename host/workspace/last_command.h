#pragma once

#include <string>

namespace host::workspace {

/// What a person had run last from a menu or a shelf, for doing it again.
struct LastCommand {
  std::string line, label;
};

}  // namespace host::workspace
