#include "host/io/image_resize.h"

#include <algorithm>
#include <cmath>

namespace host::io {
namespace {

/// What one new row or column takes from the old ones.
struct Share {
  std::size_t first = 0;
  std::vector<double> weights;  ///< of first, first + 1, ...; their sum is 1
};

std::vector<Share> sharesOf(int from, int to) {
  const double scale = static_cast<double>(from) / to;
  const double reach = std::max(scale, 1.0);
  std::vector<Share> shares(at(to));
  for (int i = 0; i < to; ++i) {
    Share& share = shares[at(i)];
    const double center = (i + 0.5) * scale - 0.5;
    const int low = std::clamp(static_cast<int>(std::ceil(center - reach)), 0, from - 1);
    const int high = std::clamp(static_cast<int>(std::floor(center + reach)), 0, from - 1);
    share.first = at(low);
    double sum = 0;
    for (int k = low; k <= high; ++k)
      sum += share.weights.emplace_back(std::max(0.0, 1 - std::abs(k - center) / reach));
    for (double& weight : share.weights) weight /= sum;
  }
  return shares;
}

}  // namespace

FloatImage resized(const FloatImage& image, int width, int height) {
  const std::vector<Share> columns = sharesOf(image.width, width);
  const std::vector<Share> rows = sharesOf(image.height, height);
  const auto oldStride = at(image.width) * 4;
  const auto stride = at(width) * 4;
  FloatImage narrowed{width, image.height, {}};
  narrowed.rgba.resize(stride * at(image.height));
  for (std::size_t y = 0; y < at(image.height); ++y)
    for (std::size_t x = 0; x < columns.size(); ++x)
      for (std::size_t c = 0; c < 4; ++c) {
        double sum = 0;
        for (std::size_t k = 0; k < columns[x].weights.size(); ++k)
          sum += columns[x].weights[k] * image.rgba[oldStride * y + 4 * (columns[x].first + k) + c];
        narrowed.rgba[stride * y + 4 * x + c] = static_cast<float>(sum);
      }
  FloatImage scaled{width, height, {}};
  scaled.rgba.resize(stride * rows.size());
  for (std::size_t y = 0; y < rows.size(); ++y)
    for (std::size_t x = 0; x < stride; ++x) {
      double sum = 0;
      for (std::size_t k = 0; k < rows[y].weights.size(); ++k)
        sum += rows[y].weights[k] * narrowed.rgba[stride * (rows[y].first + k) + x];
      scaled.rgba[stride * y + x] = static_cast<float>(sum);
    }
  return scaled;
}

}  // namespace host::io
