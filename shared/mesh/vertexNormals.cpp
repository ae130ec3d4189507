#include "shared/mesh/vertexNormals.h"

#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

void vertexNormals(const MPointArray& points, const MIntArray& counts, const MIntArray& connects,
                   MVectorArray& normals) {
  normals = MVectorArray(points.length(), MVector());
  const auto vertex = [&](unsigned int corner) {
    return static_cast<unsigned int>(connects[corner]);
  };
  unsigned int first = 0;
  for (unsigned int f = 0; f < counts.length(); ++f) {
    const unsigned int end = first + static_cast<unsigned int>(counts[f]);
    MVector normal;
    for (unsigned int c = first; c < end; ++c) {
      const MPoint& a = points[vertex(c)];
      const MPoint& b = points[vertex(c + 1 < end ? c + 1 : first)];
      normal +=
          MVector((a.y - b.y) * (a.z + b.z), (a.z - b.z) * (a.x + b.x), (a.x - b.x) * (a.y + b.y));
    }
    for (unsigned int c = first; c < end; ++c) normals[vertex(c)] += normal;
    first = end;
  }
  for (unsigned int v = 0; v < normals.length(); ++v) normals[v].normalize();
}
