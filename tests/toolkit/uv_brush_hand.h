#pragma once

#include <maya/M3dView.h>
#include <maya/MFnMesh.h>
#include <maya/MItDependencyNodes.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "brushes/uvOrientation.h"
#include "tests/toolkit/tool_hand.h"
#include "tests/toolkit/uv_hand.h"

/// Where the UVs that a test brushes are kept.
enum class uvHome { kUvObject, kCallbackObject, kLinkedMesh, kStored, kHistory };
inline constexpr uvHome kHomes[] = {uvHome::kUvObject, uvHome::kCallbackObject, uvHome::kLinkedMesh,
                                    uvHome::kStored, uvHome::kHistory};

/// A hand with a UV brush over the mesh "shape", or over its UV object.
struct uvBrushHand : toolHand {
  explicit uvBrushHand(const std::string& mesh = kPlane, uvHome homeIn = uvHome::kUvObject,
                       const std::string& context = "tweakUvBrushContext")
      : home(homeIn), tool(context) {
    run(mesh);
    run("setAttr top.translateY 1000");
    if (home == uvHome::kHistory)
      run("polyMoveFacet -ty 0 shape.f[0]");
    else
      run("delete -ch shape");
    if (home == uvHome::kCallbackObject)
      run("select -r shape; addUVNodeMessageCmd");
    else if (home == uvHome::kUvObject || home == uvHome::kLinkedMesh)
      run("select -r shape; qxBuildUVObject");
    const bool isOnObject = home == uvHome::kUvObject || home == uvHome::kCallbackObject;
    brushed = isOnObject ? "polySurface1" : "shape";
    if (home != uvHome::kStored && home != uvHome::kHistory) uvObject = "polySurface1";
    run("select -r " + brushed + "; viewFit top; select -cl; refresh");
    run("select -r " + brushed);
    run(tool + " brush; setToolTo brush");
    set("-screenRadius 100 -smoothing 0");
  }
  void set(const std::string& flags) { run(tool + " -e " + flags + " brush"); }
  void drag(const std::string& from, double right, double up, heldKeys keys = {}, int steps = 5) {
    const place start = at(from);
    stroke(start, {start.x + right, start.y + up}, kLeft, keys, steps);
  }
  uvArrays uvs() { return uvsOf("shape"); }
  /// The scene without what the brush shows of itself.
  std::uint64_t sceneHash() {
    run("setToolTo selectSuperContext");
    const std::uint64_t found = hash();
    run("setToolTo brush");
    return found;
  }
  std::string vertex(int id) const { return brushed + ".vtx[" + std::to_string(id) + "]"; }

  uvHome home;
  std::string tool, brushed, uvObject;
  static constexpr const char* kPlane = "polyPlane -n shape -w 10 -h 10 -sx 10 -sy 10";
};

/// Corners of a mesh's map that lie the other way than most of it, by exact test.
inline int turnedOver(const uvArrays& uvs) {
  std::vector<int> signs;
  unsigned int first = 0;
  const auto at = [&](unsigned int i, float(&place)[2]) {
    const auto id = static_cast<unsigned int>(uvs.ids[i]);
    place[0] = uvs.u[id];
    place[1] = uvs.v[id];
  };
  int left = 0, others = 0;
  for (unsigned int face = 0; face < uvs.counts.length(); ++face) {
    const auto size = static_cast<unsigned int>(uvs.counts[face]);
    for (unsigned int i = 0; i < size; ++i) {
      float a[2], b[2], c[2];
      at(first + (i + size - 1) % size, a);
      at(first + i, b);
      at(first + (i + 1) % size, c);
      (orientation(a, b, c) > 0 ? left : others)++;
    }
    first += size;
  }
  return std::min(left, others);
}

inline int nodesOf(const char* type) {
  int count = 0;
  for (MItDependencyNodes each; !each.isDone(); each.next())
    count += MFnDependencyNode(each.thisNode()).typeName() == type;
  return count;
}
