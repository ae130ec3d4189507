#pragma once

#include <unordered_map>
#include <vector>

#include "brushes/brushContext.h"
#include "brushes/uvFrame.h"
#include "brushes/uvTarget.h"

/// UVs that a dab reaches.
struct uvRegion {
  std::vector<int> uvs;
  std::vector<double> weights;              ///< 0 to 1, one a UV
  std::unordered_map<int, uvFrame> frames;  ///< of each shell that has some, at the dab's centre
  bool isEmpty() const { return uvs.empty(); }
};

/// How UVs are found from places of the surface that is brushed: a UV object, or the mesh itself.
class uvReach {
 public:
  /// @param isUvObject the surface's vertices are the UVs
  /// @return false when the assignment does not fit the mesh
  bool begin(const brushSurface& surface, bool isUvObject, const uvTarget::content& content);
  bool isFlat() const { return isUvObject; }

  /// What a dab that lies on the surface reaches by falloff, shells, borders and pins.
  /// @param moves UVs are moved rather than relaxed: a shell that is kept whole moves only when
  /// none of it is pinned
  void collect(const brushDab& dab, const brushSettings& settings, const uvLayout& layout,
               bool moves, uvRegion& region) const;
  /// The place of each corner of the layout's polygons on the mesh, world, for relaxing.
  /// @return empty when the mesh does not fit the layout
  static std::vector<float> cornersOnMesh(const MDagPath& mesh, const uvLayout& layout);

 private:
  void takeVertices(const brushDab& dab, const dabRegion& found, const brushSettings& settings,
                    const uvLayout& layout, uvRegion& region) const;
  void widenToShells(const uvLayout& layout, bool moves, bool keepsPins, uvRegion& region) const;
  void addFrame(const brushDab& dab, const uvLayout& layout, int shell, int face,
                uvRegion& region) const;

  bool isUvObject = false;
  intLists uvsAt;    ///< UVs at each vertex of the mesh, each once
  intLists corners;  ///< vertices of the mesh's polygons
  std::vector<char> pins;
};
