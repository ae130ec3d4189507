#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/detail/Handle.h>

class MObject;

/// A picture in memory: bytes or floats, row after row from the bottom, and, where somebody set
/// them, depths.
///
/// Reads PNG, TIFF, JPEG and BMP, told apart by their first bytes, and writes them. A call that
/// fails leaves the picture as it was. Why a file can't be read or written is said as a warning,
/// because a status has no room for it; what a plug-in says of it may come on top.
class MImage {
 public:
  enum MPixelType {
    kUnknown,
    kByte,   ///< 0 to 255 a channel
    kFloat,  ///< 0 is black, 1 the white of a file of whole numbers
  };

  MImage();
  ~MImage();
  MImage(const MImage& other);
  MImage& operator=(const MImage& other);

  /// Makes a black, transparent picture.
  /// @param channels 1 to 4; a picture of bytes has always 4
  MStatus create(unsigned int width, unsigned int height, unsigned int channels = 4,
                 MPixelType type = kByte);
  /// Reads a file with 4 channels: red, green, blue, alpha. A file with 8, 16 or 32 bits gives
  /// either type.
  MStatus readFromFile(MString pathname, MPixelType type = kByte);
  /// Reads the file that a file texture node names.
  MStatus readFromTextureNode(const MObject& fileTextureNode, MPixelType type = kByte);

  MStatus getSize(unsigned int& width, unsigned int& height) const;
  MPixelType pixelType() const;
  /// Bytes that one pixel takes: 4 of bytes, 4 a channel of floats, 0 without a picture.
  unsigned int depth() const;

  /// The picture itself, to read and to write; null when it is of the other type or there is none.
  /// Good until the picture is read, resized or set anew.
  unsigned char* pixels() const;
  float* floatPixels() const;
  /// Copies pixels of four bytes.
  MStatus setPixels(unsigned char* pixels, unsigned int width, unsigned int height);
  MStatus setFloatPixels(float* pixels, unsigned int width, unsigned int height,
                         unsigned int channels = 4);
  /// Whether the first of a pixel is red, not blue. Here it is red until somebody says otherwise,
  /// which turns no pixels round.
  bool isRGBA() const;
  MStatus setRGBA(bool rgbaFormat);

  /// Goes over to the other type: a byte becomes byte / 255 * scale + offset, and back. A scale of
  /// 0 stands for 1.
  MStatus convertPixelFormat(MPixelType type, float scale = 0.0F, float offset = 0.0F);
  /// Scales the picture. With its proportions kept it becomes as large as fits into the middle of
  /// the new size, and what is left is black and transparent.
  MStatus resize(int width, int height, bool preserveAspectRatio = true);
  void verticalFlip();
  /// Lets go of pixels and depths.
  MStatus release();

  /// Writes a file. Floats go to TIFF as they are and to PNG with 16 bits.
  /// @param outputFormat "png", "tif", "jpg", "bmp"; "iff", the default, is not written by this
  /// host, which says so
  MStatus writeToFile(MString pathname, MString outputFormat = MString("iff")) const;

  // Depths, one a pixel.
  bool haveDepth() const;
  MStatus getDepthMapSize(unsigned int& width, unsigned int& height) const;
  MStatus getDepthMapRange(float& minValue, float& maxValue) const;
  float* depthMap(MStatus* status = nullptr) const;
  /// Copies depths, the lowest row first.
  MStatus setDepthMap(const float* depth, unsigned int width, unsigned int height);

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
