#pragma once

#include "host/scene/document.h"

namespace host::edits {

/// Reads the scene at another time while it lives, unrecorded; the scene's own time is there again
/// afterwards. Nothing happens in a scene without a time node.
class AtTime {
 public:
  AtTime(scene::Document& document, double seconds);
  ~AtTime();
  AtTime(const AtTime&) = delete;
  AtTime& operator=(const AtTime&) = delete;
  [[nodiscard]] bool isThere() const { return !clock_.isNull(); }

 private:
  scene::Document& document_;
  dg::Plug clock_;
  dg::Value before_;
};

}  // namespace host::edits
