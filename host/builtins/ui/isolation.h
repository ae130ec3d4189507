#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/dg/node.h"

namespace host::builtins {

/// Which objects each panel shows alone.
class Isolation {
 public:
  struct Panel {
    bool isOn = false;
    std::vector<std::weak_ptr<dg::Node>> nodes;  ///< transforms and shapes
  };
  [[nodiscard]] Panel& of(const std::string& panel) { return panels_[panel]; }
  /// Whether a panel shows a node: isolation is off there, or the node is in its set.
  [[nodiscard]] bool shows(const std::string& panel, const dg::Node& node) const;
  void add(const std::string& panel, dg::Node& node);
  void remove(const std::string& panel, const dg::Node& node);

 private:
  std::map<std::string, Panel, std::less<>> panels_;
};

}  // namespace host::builtins
