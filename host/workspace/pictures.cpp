#include "host/workspace/pictures.h"

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
/// picture of 16k by 16k would take a gigabyte.
constexpr int kLargestShownSide = 4096;

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
  auto image = io::readSmallPicture(file.string(), kLargestShownSide);
  if (!image) {
    if (!entry.isWarned) postMessage(MessageKind::Warning, image.error().message);
    entry.isWarned = true;
    return entry.picture = missingPicture();
  }
  entry.isWarned = false;
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
