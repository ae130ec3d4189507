#pragma once

#include <maya/M3dView.h>

#include <cstdio>
#include <random>

#include "tests/toolkit/tool_hand.h"

/// A hand with the quad draw tool, seen from above, 32 pixels a centimetre, the origin in the
/// middle.
class quadHand : public toolHand {
 public:
  static constexpr const char* kLocator = "qxModelingToolsDrawQuadLocator";

  explicit quadHand(bool isMirrored = false) {
    mirror(isMirrored);
    run("select -cl");
  }
  void take() { run("if (!`contextInfo -ex quad`) quadDrawContext quad; setToolTo quad;"); }
  /// Makes an object the live surface; "" for none.
  void live(const std::string& object) {
    option("checkBox -e -v " + std::string(object.empty() ? "0" : "1") +
           " enable_slide_soft_select_QXMT_CB; " +
           (object.empty() ? "" : "select -r " + object + "; loadSlideObject_QXMT_Proc"));
    run("select -cl");
  }
  static MPlug plug(const char* attribute) {
    MSelectionList list;
    MPlug found;
    if (list.add(MString(kLocator) + "." + attribute) != MS::kSuccess ||
        list.getPlug(0, found) != MS::kSuccess)
      return {};
    return found;
  }
  static MPointArray points(const char* attribute) {
    const MPlug at = plug(attribute);
    const MObject data = at.isNull() ? MObject() : at.asMObject();
    return data.isNull() ? MPointArray() : MFnPointArrayData(data).array();
  }
  static void setPoints(const char* attribute, const MPointArray& points) {
    REQUIRE(plug(attribute).setMObject(MFnPointArrayData().create(points)) == MS::kSuccess);
  }
  static unsigned int loose() { return points("parr").length(); }
  static unsigned int previewed() { return points("geoparr").length(); }
  void placeAt(double x, double z) { click(pixel(x, 0, z)); }
  /// A square of loose points, a centimetre on a side, from its lowest corner.
  void placeSquare(double x, double z) {
    for (const auto& [dx, dz] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) placeAt(x + dx, z + dz);
  }
  void makeAt(double x, double z) { click(pixel(x, 0, z), kLeft, kShift); }
  void hoverAt(double x, double z) { hover(pixel(x, 0, z)); }
  /// Whether all face normals of a mesh point up.
  bool facesUp(const std::string& object) {
    bool up = true;
    for (const std::string& line : texts("polyInfo -fn " + object)) {
      double y = 0;
      std::sscanf(line.substr(line.find(':') + 1).c_str(), "%*f %lf", &y);
      up = up && y > 0.99;
    }
    return up;
  }
};

inline bool isSame(const MPointArray& a, const MPointArray& b) {
  bool same = a.length() == b.length();
  for (unsigned int i = 0; same && i < a.length(); ++i) same = a[i] == b[i];
  return same;
}

/// Evenly from -reach to reach.
inline double scatter(std::mt19937& random, double reach) {
  return std::uniform_real_distribution<double>(-reach, reach)(random);
}
