#include "shared/mesh/polygonGraph.h"

#include <maya/MIntArray.h>

#include <algorithm>
#include <utility>

#include "shared/numeric/indexArrays.h"

polygonGraph::polygonGraph(const MIntArray& counts, const MIntArray& vertexOfCorner,
                           unsigned int vertexCount)
    : vertices(static_cast<int>(vertexCount)), connects(toVector(vertexOfCorner)) {
  firsts.reserve(counts.length() + 1);
  faces.reserve(connects.size());
  firsts.push_back(0);
  for (unsigned int f = 0; f < counts.length(); ++f) {
    firsts.push_back(firsts.back() + counts[f]);
    faces.insert(faces.end(), static_cast<std::size_t>(counts[f]), static_cast<int>(f));
  }
  joinEdges();
}

void polygonGraph::joinEdges() {
  struct run {
    int low, high, corner;
  };
  std::vector<run> runs;
  runs.reserve(connects.size());
  for (int corner = 0; corner < static_cast<int>(connects.size()); ++corner) {
    const std::pair<int, int> ends = std::minmax({vertexAt(corner), vertexAt(turn(corner, 1))});
    runs.push_back({ends.first, ends.second, corner});
  }
  std::sort(runs.begin(), runs.end(), [](const run& a, const run& b) {
    if (a.low != b.low) return a.low < b.low;
    return a.high != b.high ? a.high < b.high : a.corner < b.corner;
  });
  opposites.assign(connects.size(), -1);
  for (std::size_t begin = 0; begin < runs.size();) {
    std::size_t end = begin + 1;
    while (end < runs.size() && runs[end].low == runs[begin].low &&
           runs[end].high == runs[begin].high)
      ++end;
    const int a = runs[begin].corner, b = runs[end - 1].corner;
    if (end - begin == 2 && vertexAt(a) != vertexAt(b)) {
      opposites[static_cast<std::size_t>(a)] = b;
      opposites[static_cast<std::size_t>(b)] = a;
    }
    begin = end;
  }
}
