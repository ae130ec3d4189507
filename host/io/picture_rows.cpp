#include "host/io/picture_rows.h"

#include <algorithm>

namespace host::io {

namespace {

/// How many pixels become one along a side.
int stepFor(int side, int largest) {
  int step = 1;
  while ((side + step - 1) / step > std::max(1, largest)) step *= 2;
  return step;
}

std::uint8_t share(std::uint64_t sum, std::uint64_t count) {
  return static_cast<std::uint8_t>((sum + count / 2) / count);
}

}  // namespace

void WholePicture::begin(int width, int height) {
  image.width = width;
  image.height = height;
  image.rgba.resize(std::size_t{4} * static_cast<std::size_t>(width) *
                    static_cast<std::size_t>(height));
  next_ = 0;
}

void WholePicture::add(const std::uint8_t* rgba) {
  const std::size_t count = std::size_t{4} * static_cast<std::size_t>(image.width);
  std::copy_n(rgba, count, image.rgba.begin() + static_cast<std::ptrdiff_t>(next_));
  next_ += count;
}

void SmallPicture::begin(int width, int height) {
  width_ = width;
  height_ = height;
  row_ = 0;
  stepX_ = stepFor(width, largestSide_);
  stepY_ = stepFor(height, largestSide_);
  image.width = (width + stepX_ - 1) / stepX_;
  image.height = (height + stepY_ - 1) / stepY_;
  image.rgba.clear();
  image.rgba.reserve(std::size_t{4} * static_cast<std::size_t>(image.width) *
                     static_cast<std::size_t>(image.height));
  sums_.assign(static_cast<std::size_t>(image.width), {});
}

void SmallPicture::add(const std::uint8_t* rgba) {
  for (int x = 0, block = 0; x < width_; ++block) {
    Sum row;
    const int end = std::min(width_, x + stepX_);
    row.count = static_cast<std::uint64_t>(end - x);
    for (; x < end; ++x, rgba += 4) {
      const std::uint64_t alpha = rgba[3];
      for (std::size_t c = 0; c < 3; ++c) {
        row.plain[c] += rgba[c];
        row.byAlpha[c] += rgba[c] * alpha;
      }
      row.plain[3] += alpha;
    }
    Sum& sum = sums_[static_cast<std::size_t>(block)];
    for (std::size_t c = 0; c < 4; ++c) sum.plain[c] += row.plain[c];
    for (std::size_t c = 0; c < 3; ++c) sum.byAlpha[c] += row.byAlpha[c];
    sum.count += row.count;
  }
  ++row_;
  if (row_ % stepY_ == 0 || row_ == height_) finishRow();
}

void SmallPicture::finishRow() {
  for (Sum& sum : sums_) {
    const bool isClear = sum.plain[3] == 0;
    for (std::size_t c = 0; c < 3; ++c)
      image.rgba.push_back(isClear ? share(sum.plain[c], sum.count)
                                   : share(sum.byAlpha[c], sum.plain[3]));
    image.rgba.push_back(share(sum.plain[3], sum.count));
    sum = {};
  }
}

}  // namespace host::io
