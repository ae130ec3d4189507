#include "shared/mesh/vertexCorners.h"

#include <maya/MIntArray.h>

vertexCorners::vertexCorners(const MIntArray& counts, const MIntArray& connects,
                             unsigned int vertexCount)
    : firsts(vertexCount + 1, 0), corners(connects.length()), faces(connects.length()) {
  for (unsigned int c = 0; c < connects.length(); ++c)
    ++firsts[static_cast<std::size_t>(connects[c]) + 1];
  for (std::size_t v = 0; v < vertexCount; ++v) firsts[v + 1] += firsts[v];
  std::vector<unsigned int> next(firsts.begin(), firsts.end() - 1);
  unsigned int corner = 0;
  for (unsigned int f = 0; f < counts.length(); ++f)
    for (int k = 0; k < counts[f]; ++k, ++corner) {
      corners[next[static_cast<std::size_t>(connects[corner])]++] = corner;
      faces[corner] = static_cast<int>(f);
    }
}
