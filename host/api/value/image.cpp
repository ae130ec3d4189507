#include <maya/MImage.h>
#include <maya/MObject.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "host/api/core/access.h"
#include "host/base/messages.h"
#include "host/io/image_resize.h"
#include "host/io/picture_file.h"
#include "host/io/picture_reader.h"
#include "host/io/png_writer.h"
#include "host/io/tiff_writer.h"

using namespace host;

namespace {

/// The pixels are kept as the plug-in sees them, lowest row first.
struct ImageRep final : api::SharedRep {
  unsigned int width = 0, height = 0, channels = 4;
  MImage::MPixelType type = MImage::kUnknown;
  std::vector<unsigned char> bytes;
  std::vector<float> floats;
  bool isRgba = true;
  unsigned int depthWidth = 0, depthHeight = 0;
  std::vector<float> depths;

  [[nodiscard]] std::size_t count() const { return std::size_t{width} * height; }
};

bool isSize(unsigned int width, unsigned int height) {
  constexpr unsigned int kLargest = io::kLargestImageSide;
  return width >= 1 && height >= 1 && width <= kLargest && height <= kLargest;
}

/// Rows in the other order.
template <class T>
void flipRows(std::vector<T>& values, std::size_t rows) {
  if (rows == 0) return;
  const auto stride = static_cast<std::ptrdiff_t>(values.size() / rows);
  for (std::size_t low = 0, high = rows - 1; low < high; ++low, --high)
    std::swap_ranges(values.begin() + stride * static_cast<std::ptrdiff_t>(low),
                     values.begin() + stride * static_cast<std::ptrdiff_t>(low + 1),
                     values.begin() + stride * static_cast<std::ptrdiff_t>(high));
}

/// Red, green, blue and alpha of a pixel with fewer numbers: one is grey, a second one alpha.
io::FloatImage asRgba(const ImageRep& image) {
  io::FloatImage rgba{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  rgba.rgba.reserve(4 * image.count());
  const std::size_t n = image.channels;
  for (std::size_t i = 0; i < image.count(); ++i) {
    const float* const pixel = image.floats.data() + n * i;
    const float second = n >= 3 ? pixel[1] : pixel[0], third = n >= 3 ? pixel[2] : pixel[0];
    const float alpha = n == 4 ? pixel[3] : n == 2 ? pixel[1] : 1.0F;
    for (const float value : {pixel[0], second, third, alpha}) rgba.rgba.push_back(value);
  }
  flipRows(rgba.rgba, image.height);
  return rgba;
}

io::Image asBytes(const ImageRep& image) {
  io::Image rgba{static_cast<int>(image.width), static_cast<int>(image.height), image.bytes};
  flipRows(rgba.rgba, image.height);
  return rgba;
}

template <class Picture>
void swapRedAndBlue(Picture& picture) {
  for (std::size_t i = 0; i + 3 < picture.rgba.size(); i += 4)
    std::swap(picture.rgba[i], picture.rgba[i + 2]);
}

void takeSize(ImageRep& image, int width, int height, MImage::MPixelType type) {
  image.width = static_cast<unsigned int>(width);
  image.height = static_cast<unsigned int>(height);
  image.channels = 4;
  image.type = type;
  image.bytes.clear();
  image.floats.clear();
}

MStatus refuse(const std::string& reason) {
  postMessage(MessageKind::Warning, reason);
  return MStatus::kFailure;
}

/// The size with the same proportions that fits into another one.
std::pair<int, int> fitting(const ImageRep& image, int width, int height) {
  const double scale = std::min(static_cast<double>(width) / image.width,
                                static_cast<double>(height) / image.height);
  return {std::clamp(static_cast<int>(std::lround(image.width * scale)), 1, width),
          std::clamp(static_cast<int>(std::lround(image.height * scale)), 1, height)};
}

/// The picture in the middle of a larger one that is black and transparent.
io::FloatImage centered(const io::FloatImage& image, int width, int height) {
  io::FloatImage framed{width, height, {}};
  framed.rgba.assign(std::size_t{4} * at(width) * at(height), 0.0F);
  const auto left = at((width - image.width) / 2);
  const auto top = at((height - image.height) / 2);
  const std::size_t stride = std::size_t{4} * at(image.width);
  for (std::size_t y = 0; y < at(image.height); ++y)
    std::copy_n(
        image.rgba.begin() + static_cast<std::ptrdiff_t>(stride * y), stride,
        framed.rgba.begin() + static_cast<std::ptrdiff_t>(4 * (at(width) * (top + y) + left)));
  return framed;
}

/// Keeps the first numbers of each pixel.
std::vector<float> narrowed(const io::FloatImage& image, std::size_t channels) {
  std::vector<float> values;
  for (std::size_t i = 0; i < image.rgba.size(); i += 4)
    for (std::size_t c = 0; c < channels; ++c)
      values.push_back(image.rgba[i + (channels == 2 && c == 1 ? 3 : c)]);
  return values;
}

}  // namespace

MImage::MImage() : handle_(new ImageRep()) {}
MImage::~MImage() = default;
MImage::MImage(const MImage& other) : handle_(new ImageRep(*api::Access::rep<ImageRep>(other))) {}
MImage& MImage::operator=(const MImage& other) {
  if (this != &other) handle_ = api::Handle(new ImageRep(*api::Access::rep<ImageRep>(other)));
  return *this;
}

MStatus MImage::create(unsigned int width, unsigned int height, unsigned int channels,
                       MPixelType type) {
  if (!isSize(width, height) || channels < 1 || channels > 4 || type == kUnknown ||
      (type == kByte && channels != 4))
    return MStatus::kInvalidParameter;
  auto& image = *api::Access::rep<ImageRep>(*this);
  takeSize(image, static_cast<int>(width), static_cast<int>(height), type);
  image.channels = channels;
  if (type == kByte)
    image.bytes.assign(4 * image.count(), 0);
  else
    image.floats.assign(channels * image.count(), 0.0F);
  return MStatus::kSuccess;
}

MStatus MImage::readFromFile(MString pathname, MPixelType type) {
  auto& image = *api::Access::rep<ImageRep>(*this);
  if (type == kUnknown) return MStatus::kInvalidParameter;
  if (type == kByte) {
    auto picture = io::readPicture(pathname.asChar());
    if (!picture) return refuse(picture.error().message);
    takeSize(image, picture->width, picture->height, type);
    image.bytes = std::move(picture->rgba);
    flipRows(image.bytes, image.height);
  } else {
    auto picture = io::readFloatPicture(pathname.asChar());
    if (!picture) return refuse(picture.error().message);
    takeSize(image, picture->width, picture->height, type);
    image.floats = std::move(picture->rgba);
    flipRows(image.floats, image.height);
  }
  image.isRgba = true;
  return MStatus::kSuccess;
}

MStatus MImage::readFromTextureNode(const MObject& fileTextureNode, MPixelType type) {
  dg::Node* const node = api::nodeOf(fileTextureNode);
  const dg::Plug plug = node ? node->plug("fileTextureName") : dg::Plug();
  if (!plug) return MStatus::kInvalidParameter;
  const auto value = node->graph().get(plug);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  if (!text || text->empty()) return refuse(node->name() + " names no picture file");
  std::filesystem::path file(*text);
  std::error_code ignored;
  // As the views look for it: beside the scene's file first.
  const std::filesystem::path beside =
      std::filesystem::path(api::document().fileName()).parent_path() / file;
  if (file.is_relative() && std::filesystem::exists(beside, ignored)) file = beside;
  return readFromFile(file.string().c_str(), type);
}

MStatus MImage::getSize(unsigned int& width, unsigned int& height) const {
  const auto& image = *api::Access::rep<ImageRep>(*this);
  width = image.width;
  height = image.height;
  return image.type == kUnknown ? MStatus::kFailure : MStatus::kSuccess;
}

MImage::MPixelType MImage::pixelType() const {
  return api::Access::rep<ImageRep>(*this)->type;
}

unsigned int MImage::depth() const {
  const auto& image = *api::Access::rep<ImageRep>(*this);
  if (image.type == kUnknown) return 0;
  return image.type == kByte ? 4 : static_cast<unsigned int>(sizeof(float)) * image.channels;
}

unsigned char* MImage::pixels() const {
  auto& image = *api::Access::rep<ImageRep>(*this);
  return image.type == kByte ? image.bytes.data() : nullptr;
}

float* MImage::floatPixels() const {
  auto& image = *api::Access::rep<ImageRep>(*this);
  return image.type == kFloat ? image.floats.data() : nullptr;
}

MStatus MImage::setPixels(unsigned char* pixels, unsigned int width, unsigned int height) {
  if (!pixels || !isSize(width, height)) return MStatus::kInvalidParameter;
  // They may be the picture's own, in another order of rows or columns.
  std::vector<unsigned char> copy(pixels, pixels + std::size_t{4} * width * height);
  auto& image = *api::Access::rep<ImageRep>(*this);
  takeSize(image, static_cast<int>(width), static_cast<int>(height), kByte);
  image.bytes = std::move(copy);
  return MStatus::kSuccess;
}

MStatus MImage::setFloatPixels(float* pixels, unsigned int width, unsigned int height,
                               unsigned int channels) {
  if (!pixels || !isSize(width, height) || channels < 1 || channels > 4)
    return MStatus::kInvalidParameter;
  std::vector<float> copy(pixels, pixels + std::size_t{channels} * width * height);
  auto& image = *api::Access::rep<ImageRep>(*this);
  takeSize(image, static_cast<int>(width), static_cast<int>(height), kFloat);
  image.channels = channels;
  image.floats = std::move(copy);
  return MStatus::kSuccess;
}

bool MImage::isRGBA() const {
  return api::Access::rep<ImageRep>(*this)->isRgba;
}

MStatus MImage::setRGBA(bool rgbaFormat) {
  api::Access::rep<ImageRep>(*this)->isRgba = rgbaFormat;
  return MStatus::kSuccess;
}

MStatus MImage::convertPixelFormat(MPixelType type, float scale, float offset) {
  auto& image = *api::Access::rep<ImageRep>(*this);
  if (type == kUnknown || image.type == kUnknown) return MStatus::kFailure;
  if (type == image.type) return MStatus::kSuccess;
  const float factor = scale == 0.0F ? 1.0F : scale;
  if (type == kFloat) {
    io::FloatImage floats = io::toFloats(asBytes(image));
    for (float& value : floats.rgba) value = value * factor + offset;
    flipRows(floats.rgba, image.height);
    image.floats = std::move(floats.rgba);
    image.bytes.clear();
  } else {
    io::FloatImage floats = asRgba(image);
    for (float& value : floats.rgba) value = value * factor + offset;
    io::Image bytes = io::toBytes(floats);
    flipRows(bytes.rgba, image.height);
    image.bytes = std::move(bytes.rgba);
    image.floats.clear();
  }
  image.channels = 4;
  image.type = type;
  return MStatus::kSuccess;
}

MStatus MImage::resize(int width, int height, bool preserveAspectRatio) {
  auto& image = *api::Access::rep<ImageRep>(*this);
  if (image.type == kUnknown) return MStatus::kFailure;
  if (width < 1 || height < 1 || width > io::kLargestImageSide || height > io::kLargestImageSide)
    return MStatus::kInvalidParameter;
  const auto [innerWidth, innerHeight] =
      preserveAspectRatio ? fitting(image, width, height) : std::pair(width, height);
  const io::FloatImage from = image.type == kByte ? io::toFloats(asBytes(image)) : asRgba(image);
  io::FloatImage to = centered(io::resized(from, innerWidth, innerHeight), width, height);
  flipRows(to.rgba, at(height));
  if (image.type == kByte)
    image.bytes = io::toBytes(to).rgba;
  else
    image.floats = narrowed(to, image.channels);
  image.width = static_cast<unsigned int>(width);
  image.height = static_cast<unsigned int>(height);
  return MStatus::kSuccess;
}

void MImage::verticalFlip() {
  auto& image = *api::Access::rep<ImageRep>(*this);
  flipRows(image.bytes, image.height);
  flipRows(image.floats, image.height);
  flipRows(image.depths, image.depthHeight);
}

MStatus MImage::release() {
  handle_ = api::Handle(new ImageRep());
  return MStatus::kSuccess;
}

MStatus MImage::writeToFile(MString pathname, MString outputFormat) const {
  const auto& image = *api::Access::rep<ImageRep>(*this);
  const std::string path = pathname.asChar();
  if (image.type == kUnknown) return refuse("\"" + path + "\" is not written: there are no pixels");
  const std::optional<io::PictureFormat> format = io::pictureFormat(outputFormat.asChar());
  if (!format)
    return refuse("\"" + path +
                  "\" is not written: pictures are written as png, tif, jpg or bmp, not as " +
                  outputFormat.asChar());
  Result<void> done;
  const bool isDeep = *format == io::PictureFormat::Png || *format == io::PictureFormat::Tif;
  if (image.type == kFloat && isDeep) {
    io::FloatImage picture = asRgba(image);
    if (!image.isRgba) swapRedAndBlue(picture);
    done = *format == io::PictureFormat::Png ? io::writePng(path, picture)
                                             : io::writeTiff(path, picture);
  } else {
    io::Image picture = image.type == kByte ? asBytes(image) : io::toBytes(asRgba(image));
    if (!image.isRgba) swapRedAndBlue(picture);
    done = io::writePicture(path, picture, *format);
  }
  return done ? MStatus(MStatus::kSuccess) : refuse(done.error().message);
}

bool MImage::haveDepth() const {
  return !api::Access::rep<ImageRep>(*this)->depths.empty();
}

MStatus MImage::getDepthMapSize(unsigned int& width, unsigned int& height) const {
  const auto& image = *api::Access::rep<ImageRep>(*this);
  width = image.depthWidth;
  height = image.depthHeight;
  return image.depths.empty() ? MStatus::kFailure : MStatus::kSuccess;
}

MStatus MImage::getDepthMapRange(float& minValue, float& maxValue) const {
  const auto& depths = api::Access::rep<ImageRep>(*this)->depths;
  if (depths.empty()) return MStatus::kFailure;
  const auto [low, high] = std::minmax_element(depths.begin(), depths.end());
  minValue = *low;
  maxValue = *high;
  return MStatus::kSuccess;
}

float* MImage::depthMap(MStatus* status) const {
  auto& depths = api::Access::rep<ImageRep>(*this)->depths;
  api::setStatus(status, depths.empty() ? MStatus::kFailure : MStatus::kSuccess);
  return depths.empty() ? nullptr : depths.data();
}

MStatus MImage::setDepthMap(const float* depth, unsigned int width, unsigned int height) {
  if (!depth || !isSize(width, height)) return MStatus::kInvalidParameter;
  auto& image = *api::Access::rep<ImageRep>(*this);
  image.depths = std::vector<float>(depth, depth + std::size_t{width} * height);
  image.depthWidth = width;
  image.depthHeight = height;
  return MStatus::kSuccess;
}
