#include <maya/MDagPath.h>
#include <maya/MRenderUtil.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace {

std::uint32_t scramble(std::uint32_t bits) {
  bits ^= bits >> 16;
  bits *= 0x7feb352dU;
  bits ^= bits >> 15;
  bits *= 0x846ca68bU;
  return bits ^ (bits >> 16);
}

/// A slope of the lattice point in one direction, from -1 to 1.
double slope(const std::array<std::int64_t, 4>& cell, int direction) {
  std::uint32_t bits = static_cast<std::uint32_t>(direction) * 0x9e3779b9U;
  for (const std::int64_t each : cell) bits = scramble(bits ^ static_cast<std::uint32_t>(each));
  return static_cast<double>(bits) / 2147483647.5 - 1;
}

/// Gradient noise (Perlin 1985, with the fade of 2002) of up to four dimensions.
float gradientNoise(const std::array<double, 4>& place, int dimensions) {
  std::array<std::int64_t, 4> cell{};
  std::array<double, 4> inside{}, fade{};
  for (int i = 0; i < dimensions; ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (!std::isfinite(place[at])) return 0;
    const double low = std::floor(place[at]);
    cell[at] = static_cast<std::int64_t>(low);
    inside[at] = place[at] - low;
    const double t = inside[at];
    fade[at] = t * t * t * (t * (t * 6 - 15) + 10);
  }
  double sum = 0;
  for (int corner = 0; corner < 1 << dimensions; ++corner) {
    std::array<std::int64_t, 4> lattice = cell;
    double weight = 1, value = 0;
    for (int i = 0; i < dimensions; ++i) {
      const auto at = static_cast<std::size_t>(i);
      const bool isHigh = (corner >> i & 1) != 0;
      lattice[at] += isHigh ? 1 : 0;
      weight *= isHigh ? fade[at] : 1 - fade[at];
    }
    for (int i = 0; i < dimensions; ++i) {
      const auto at = static_cast<std::size_t>(i);
      value += slope(lattice, i) * (inside[at] - ((corner >> i & 1) != 0 ? 1 : 0));
    }
    sum += weight * value;
  }
  return static_cast<float>(sum);
}

}  // namespace

float MRenderUtil::valueInNoiseTable(int index) {
  return static_cast<float>(scramble(static_cast<std::uint32_t>(index)) / 4294967295.0);
}
float MRenderUtil::noise1(float x) {
  return gradientNoise({static_cast<double>(x)}, 1);
}
float MRenderUtil::noise2(float x, float y) {
  return gradientNoise({static_cast<double>(x), static_cast<double>(y)}, 2);
}
float MRenderUtil::noise3(float x, float y, float z) {
  return gradientNoise({static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)}, 3);
}
float MRenderUtil::noise4(float x, float y, float z, float time) {
  return gradientNoise({static_cast<double>(x), static_cast<double>(y), static_cast<double>(z),
                        static_cast<double>(time)},
                       4);
}
MRenderUtil::MRenderState MRenderUtil::mayaRenderState() {
  return kNotRendering;
}
bool MRenderUtil::generatingIprFile() {
  return false;
}
bool MRenderUtil::inCurrentRenderLayer(const MDagPath& objectPath, MStatus* status) {
  if (status) *status = objectPath.isValid() ? MStatus::kSuccess : MStatus::kInvalidParameter;
  return objectPath.isValid();
}
MString MRenderUtil::mainBeautyPassName() {
  return "beauty";
}
