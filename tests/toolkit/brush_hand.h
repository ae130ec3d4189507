#pragma once

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "tests/toolkit/tool_hand.h"

/// A hand with a brush over a sheet of 20 by 20 faces, "sheet", which lies in the top view, 32
/// pixels a centimetre.
class brushHand : public toolHand {
 public:
  static constexpr const char* kSheet = "polyPlane -n sheet -w 10 -h 10 -sx 20 -sy 20 -ch 0;";

  explicit brushHand(const std::string& kind = "standardSculptBrushContext",
                     const std::string& scene = kSheet)
      : command(kind) {
    run(scene + " select -r sheet;");
    take();
    set("-radiusSpace world -radius 1.5 -strength 0.8 -smoothing 0");
  }
  void take() { run("if (!`contextInfo -ex brush`) " + command + " brush; setToolTo brush;"); }
  void drop() { run("setToolTo selectSuperContext"); }
  void set(const std::string& flags) { run(command + " -e " + flags + " brush"); }
  std::string get(const std::string& flag) {
    const auto value = session->executeLine(command + " -q -" + flag + " brush");
    REQUIRE(value.has_value());
    return value->toText().value_or("");
  }
  void brush(double fromX, double fromZ, double toX, double toZ, heldKeys keys = {}) {
    stroke(pixel(fromX, 0, fromZ), pixel(toX, 0, toZ), kLeft, keys, 8);
  }

  /// All points of an object, as stored.
  static std::vector<float> stored(const char* name = "sheet") {
    const MFnMesh mesh(path(name));
    const float* points = mesh.getRawPoints(nullptr);
    return {points, points + 3 * static_cast<std::size_t>(mesh.numVertices())};
  }
  static int countMoved(const std::vector<float>& a, const std::vector<float>& b) {
    int moved = 0;
    REQUIRE(a.size() == b.size());
    for (std::size_t i = 0; i < a.size(); i += 3)
      moved += std::memcmp(&a[i], &b[i], 3 * sizeof(float)) != 0 ? 1 : 0;
    return moved;
  }

  std::string command;
};
