#include "host/workspace/pictures.h"

#include <algorithm>
#include <array>

#include "host/base/messages.h"
#include "host/io/picture_reader.h"

namespace host::workspace {

namespace {

namespace fs = std::filesystem;

/// Magenta and dark squares.
nodes::PicturePtr missingPicture() {
  static const nodes::PicturePtr picture = [] {
    constexpr int kSide = 64, kSquare = 8;
    auto made = std::make_shared<nodes::Picture>();
    made->width = made->height = kSide;
    for (int y = 0; y < kSide; ++y)
      for (int x = 0; x < kSide; ++x) {
        const bool isBright = (x / kSquare + y / kSquare) % 2 == 0;
        const std::uint8_t pixel[4] = {static_cast<std::uint8_t>(isBright ? 255 : 40),
                                       static_cast<std::uint8_t>(isBright ? 0 : 40),
                                       static_cast<std::uint8_t>(isBright ? 220 : 40), 255};
        made->rgba.insert(made->rgba.end(), std::begin(pixel), std::end(pixel));
      }
    return made;
  }();
  return picture;
}

/// The longest side that views show. A person sees no more of one picture at a time, and a
/// picture of 16k would take a gigabyte three times over.
constexpr int kLargestShownSide = 4096;

/// Half as wide or high, where a side is too long: the mean of two pixels, by how opaque they are.
io::Image halved(const io::Image& image) {
  const int stepX = image.width > kLargestShownSide ? 2 : 1;
  const int stepY = image.height > kLargestShownSide ? 2 : 1;
  io::Image small{(image.width + stepX - 1) / stepX, (image.height + stepY - 1) / stepY, {}};
  small.rgba.reserve(std::size_t{4} * static_cast<std::size_t>(small.width) *
                     static_cast<std::size_t>(small.height));
  for (int y = 0; y < small.height; ++y)
    for (int x = 0; x < small.width; ++x) {
      std::array<unsigned, 4> sum{}, weighted{};
      unsigned count = 0;
      for (int j = stepY * y; j < std::min(stepY * (y + 1), image.height); ++j)
        for (int i = stepX * x; i < std::min(stepX * (x + 1), image.width); ++i, ++count) {
          const std::uint8_t* from =
              image.rgba.data() +
              4 * (static_cast<std::size_t>(j) * static_cast<std::size_t>(image.width) +
                   static_cast<std::size_t>(i));
          for (std::size_t c = 0; c < 4; ++c) {
            sum[c] += from[c];
            weighted[c] += from[c] * unsigned{from[3]};
          }
        }
      for (std::size_t c = 0; c < 3; ++c)
        small.rgba.push_back(
            static_cast<std::uint8_t>(sum[3] > 0 ? weighted[c] / sum[3] : sum[c] / count));
      small.rgba.push_back(static_cast<std::uint8_t>(sum[3] / count));
    }
  return small;
}

fs::path locate(const std::string& path, const std::string& folder) {
  fs::path wanted(path);
  if (wanted.is_relative() && !folder.empty()) {
    const fs::path beside = fs::path(folder) / wanted;
    std::error_code ignored;
    if (fs::exists(beside, ignored)) return beside;
  }
  return wanted;
}

}  // namespace

nodes::PicturePtr Pictures::find(const std::string& path, const std::string& folder) {
  if (path.empty()) return nullptr;
  const fs::path file = locate(path, folder);
  Entry& entry = entries_[file.string()];
  entry.isUsed = true;
  std::error_code failure;
  const fs::file_time_type changed = fs::last_write_time(file, failure);
  if (entry.picture && entry.changed == changed) return entry.picture;
  entry.changed = changed;
  auto image = io::readPicture(file.string());
  if (!image) {
    if (!entry.isWarned) postMessage(MessageKind::Warning, image.error().message);
    entry.isWarned = true;
    return entry.picture = missingPicture();
  }
  entry.isWarned = false;
  while (std::max(image->width, image->height) > kLargestShownSide) *image = halved(*image);
  auto picture = std::make_shared<nodes::Picture>();
  picture->width = image->width;
  picture->height = image->height;
  picture->rgba = std::move(image->rgba);
  return entry.picture = std::move(picture);
}

void Pictures::dropUnused() {
  for (auto& [path, entry] : entries_) {
    // What was warned of stays known, so that it is not warned of again.
    if (!entry.isUsed && !entry.isWarned) entry.picture.reset();
    entry.isUsed = false;
  }
  std::erase_if(entries_, [](const auto& each) { return !each.second.picture; });
}

std::size_t Pictures::bytes() const {
  std::size_t sum = 0;
  for (const auto& [path, entry] : entries_)
    if (entry.picture) sum += entry.picture->rgba.size();
  return sum;
}

}  // namespace host::workspace
