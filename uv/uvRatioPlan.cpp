#include "uv/uvRatioPlan.h"

#include <cmath>
#include <vector>

#include "uv/uvArrays.h"

namespace {

struct centre {
  double u = 0.0, v = 0.0;
};

/// A shell's sums over the corners of its faces.
struct shellSums {
  double sceneLength = 0.0, uvLength = 0.0;
  double u = 0.0, v = 0.0;
  unsigned int corners = 0;
};

float uvDistance(const uvArrays& uvs, unsigned int a, unsigned int b) {
  const float du = uvs.u[a] - uvs.u[b], dv = uvs.v[a] - uvs.v[b];
  return std::sqrt(du * du + dv * dv);
}

/// Calls `visit(shell, first corner, corner count)` for each face of a shell.
template <class Visit>
void forEachFace(const uvRatioInput& input, const uvArrays& uvs, Visit visit) {
  unsigned int first = 0;
  for (unsigned int face = 0; face < input.counts.length(); ++face) {
    const auto corners = static_cast<unsigned int>(input.counts[face]);
    if (corners > 0) {
      const int shell = input.shellOfUv[static_cast<unsigned int>(uvs.ids[first])];
      if (shell >= 0) visit(static_cast<std::size_t>(shell), first, corners);
    }
    first += corners;
  }
}

std::vector<shellSums> sumUp(const uvRatioInput& input, const uvArrays& uvs) {
  std::vector<shellSums> shells(input.shellCount);
  forEachFace(input, uvs, [&](std::size_t shell, unsigned int first, unsigned int corners) {
    shellSums& sums = shells[shell];
    for (unsigned int k = 0; k < corners; ++k) {
      const unsigned int at = first + k, next = first + (k + 1) % corners;
      const auto uv = static_cast<unsigned int>(uvs.ids[at]);
      const auto nextUv = static_cast<unsigned int>(uvs.ids[next]);
      const auto vertex = static_cast<unsigned int>(input.connects[at]);
      const auto nextVertex = static_cast<unsigned int>(input.connects[next]);
      sums.sceneLength += input.points[vertex].distanceTo(input.points[nextVertex]);
      sums.uvLength += static_cast<double>(uvDistance(uvs, uv, nextUv));
      sums.u += static_cast<double>(uvs.u[uv]);
      sums.v += static_cast<double>(uvs.v[uv]);
    }
    sums.corners += corners;
  });
  return shells;
}

centre centreOfAll(const uvArrays& uvs) {
  centre sum;
  const unsigned int count = uvs.u.length();
  for (unsigned int i = 0; i < count; ++i) {
    sum.u += static_cast<double>(uvs.u[i]);
    sum.v += static_cast<double>(uvs.v[i]);
  }
  return {sum.u / count, sum.v / count};
}

std::vector<char> wantedShells(const uvRatioInput& input, const MIntArray* wanted) {
  std::vector<char> isWanted(input.shellCount, wanted ? 0 : 1);
  for (unsigned int i = 0; wanted && i < wanted->length(); ++i) {
    const auto uv = static_cast<unsigned int>((*wanted)[i]);
    const int shell = uv < input.shellOfUv.length() ? input.shellOfUv[uv] : -1;
    if (shell >= 0) isWanted[static_cast<std::size_t>(shell)] = 1;
  }
  return isWanted;
}

}  // namespace

void scaleToRatio(const uvRatioInput& input, const uvRatioOptions& options, const MIntArray* wanted,
                  uvArrays& uvs) {
  const std::vector<shellSums> shells = sumUp(input, uvs);
  const std::vector<char> isWanted = wantedShells(input, wanted);
  const centre ofAll = options.isGlobal ? centreOfAll(uvs) : centre();
  const uvArrays before = uvs;
  forEachFace(input, before, [&](std::size_t shell, unsigned int first, unsigned int corners) {
    if (!isWanted[shell]) return;
    const shellSums& sums = shells[shell];
    const centre pivot =
        options.isGlobal ? ofAll : centre{sums.u / sums.corners, sums.v / sums.corners};
    const double scale = static_cast<float>(sums.sceneLength / options.ratio / sums.uvLength);
    for (unsigned int at = first; at < first + corners; ++at) {
      const auto uv = static_cast<unsigned int>(before.ids[at]);
      uvs.u[uv] =
          static_cast<float>((static_cast<double>(before.u[uv]) - pivot.u) * scale + pivot.u);
      uvs.v[uv] =
          static_cast<float>((static_cast<double>(before.v[uv]) - pivot.v) * scale + pivot.v);
    }
  });
}
