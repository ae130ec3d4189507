#pragma once

#include <string>
#include <vector>

#include "host/viewport/scene_walk.h"

namespace host::workspace {

/// The lights that are visible, every instance: all, or with "selected" and "active" those that are
/// selected, themselves or something above them. None for other words. Ends with as many as views
/// draw by.
class LightGatherer final : public viewport::PlaceVisitor {
 public:
  explicit LightGatherer(const std::string& which);
  void visit(const viewport::ShownPlace& place) override;

  std::vector<viewport::Light> lights;

 private:
  bool onlySelected_, isOff_;
};

}  // namespace host::workspace
