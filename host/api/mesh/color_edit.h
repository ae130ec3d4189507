#pragma once

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MStatus.h>

#include <vector>

#include "host/mesh/mesh.h"

namespace host::api {

[[nodiscard]] inline MColor toMColor(const mesh::Color4f& c) {
  return MColor(c.r, c.g, c.b, c.a);
}
[[nodiscard]] inline mesh::Color4f fromMColor(const MColor& c) {
  return {c.r, c.g, c.b, c.a};
}
/// What queries give where nothing is coloured, unless the caller has another wish.
[[nodiscard]] inline MColor unsetColor(const MColor* wished) {
  return wished ? *wished : MColor(-1, -1, -1, -1);
}

/// The mean of those colours that are set (alpha not below 0); fails when none is.
MStatus meanColor(const MColorArray& colors, MColor& mean);

/// The colour id at a corner; kNone where there is none or no such set.
[[nodiscard]] inline Index cornerColor(const mesh::Mesh& mesh, int set, CornerId corner) {
  if (set < 0) return kNone;
  const auto& ids = mesh.colorSet(set).cornerIds;
  return ids.empty() ? kNone : ids[at(corner)];
}

/// Colours the corners of the current colour set one by one; a mesh without a set gets "colorSet1".
/// Colours that no corner uses any more are dropped by `finish`, the others keep their order.
class ColorEdit {
 public:
  explicit ColorEdit(mesh::Mesh& mesh);
  /// Adds a colour and returns its id for `assign`.
  [[nodiscard]] Index add(const MColor& color);
  /// Gives a corner a colour, or none.
  void assign(CornerId corner, Index color) { set_.cornerIds[corner] = color; }
  void setRepresentation(int channels) { set_.representation = channels; }
  void finish();

 private:
  mesh::Mesh& mesh_;
  int index_;
  mesh::ColorSet set_;
};

}  // namespace host::api
