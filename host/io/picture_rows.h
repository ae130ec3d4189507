#pragma once

#include <cstdint>
#include <vector>

#include "host/io/image.h"

namespace host::io {

/// Takes a picture as it is read, row after row from the top: RGBA of 8 bits, not premultiplied.
class PictureRows {
 public:
  PictureRows() = default;
  PictureRows(const PictureRows&) = delete;
  PictureRows& operator=(const PictureRows&) = delete;
  virtual ~PictureRows() = default;
  virtual void begin(int width, int height) = 0;
  virtual void add(const std::uint8_t* rgba) = 0;  ///< 4 * width bytes
};

/// Keeps the picture as it comes.
class WholePicture final : public PictureRows {
 public:
  void begin(int width, int height) override;
  void add(const std::uint8_t* rgba) override;
  Image image;

 private:
  std::size_t next_ = 0;
};

/// Keeps it so small that no side is longer than a limit: sides that are are halved until they fit.
/// A pixel is the mean of a block, the colour by how opaque each pixel of it is. Takes memory for
/// the small picture and two rows.
class SmallPicture final : public PictureRows {
 public:
  explicit SmallPicture(int largestSide) : largestSide_(largestSide) {}
  void begin(int width, int height) override;
  void add(const std::uint8_t* rgba) override;
  Image image;

 private:
  struct Sum {
    std::uint64_t plain[4] = {}, byAlpha[3] = {}, count = 0;
  };
  void finishRow();

  int largestSide_, width_ = 0, height_ = 0, stepX_ = 1, stepY_ = 1, row_ = 0;
  std::vector<Sum> sums_;
};

}  // namespace host::io
