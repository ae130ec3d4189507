#include "host/io/bmp_reader.h"

#include <algorithm>
#include <array>

namespace host::io {
namespace {

/// Numbers of a file, least byte first; 0 beyond its end.
class Bytes {
 public:
  explicit Bytes(std::string_view text) : text_(text) {}
  [[nodiscard]] std::size_t size() const { return text_.size(); }
  [[nodiscard]] std::uint32_t byte(std::size_t i) const {
    return i < text_.size() ? static_cast<unsigned char>(text_[i]) : 0U;
  }
  [[nodiscard]] std::uint32_t number(std::size_t i, int count) const {
    std::uint32_t value = 0;
    for (int k = count; k-- > 0;) value = value << 8 | byte(i + static_cast<std::size_t>(k));
    return value;
  }

 private:
  std::string_view text_;
};

struct Head {
  std::size_t pixels = 0, palette = 0, stride = 0;
  int width = 0, height = 0, bits = 0;
  std::uint32_t colors = 0;
  bool isTopDown = false;
  std::array<std::uint32_t, 3> masks{};  ///< of 16 and 32 bits: red, green, blue
};

Result<Head> readHead(const Bytes& bytes, const std::string& name) {
  constexpr std::uint32_t kLeastHead = 40, kMasked = 3, kMaskedWithAlpha = 6;
  const std::uint32_t size = bytes.number(14, 4);
  if (size < kLeastHead || bytes.size() < 14 + std::size_t{size})
    return fail("Cannot read \"{}\": it is damaged", name);
  Head head;
  head.width = static_cast<int>(bytes.number(18, 4));
  head.height = static_cast<int>(bytes.number(22, 4));
  head.isTopDown = head.height < 0;
  if (head.isTopDown) head.height = head.height < -kLargestImageSide ? 0 : -head.height;
  head.bits = static_cast<int>(bytes.number(28, 2));
  const std::uint32_t compression = bytes.number(30, 4);
  const bool hasMasks = compression == kMasked || compression == kMaskedWithAlpha;
  constexpr std::array<int, 6> kDepths{1, 4, 8, 16, 24, 32};
  if (std::ranges::find(kDepths, head.bits) == kDepths.end() || (compression != 0 && !hasMasks))
    return fail("Cannot read \"{}\": this kind of compression is not supported", name);
  if (head.width < 1 || head.height < 1 || head.width > kLargestImageSide ||
      head.height > kLargestImageSide)
    return fail("Cannot read \"{}\": it claims to have {} x {} pixels", name, head.width,
                head.height);
  head.pixels = bytes.number(10, 4);
  head.palette = 14 + std::size_t{size};
  head.colors = bytes.number(46, 4);
  if (head.bits <= 8 && (head.colors == 0 || head.colors > 1U << head.bits))
    head.colors = 1U << head.bits;
  head.masks = head.bits == 16 ? std::array<std::uint32_t, 3>{0x7C00, 0x03E0, 0x001F}
                               : std::array<std::uint32_t, 3>{0xFF0000, 0xFF00, 0xFF};
  for (std::size_t c = 0; c < 3 && hasMasks; ++c) head.masks[c] = bytes.number(54 + 4 * c, 4);
  head.stride =
      (static_cast<std::size_t>(head.width) * static_cast<std::size_t>(head.bits) + 31) / 32 * 4;
  if (head.pixels > bytes.size() ||
      head.stride * static_cast<std::size_t>(head.height) > bytes.size() - head.pixels)
    return fail("Cannot read \"{}\": it ends early", name);
  return head;
}

/// The bits of a mask, spread over 0..255.
std::uint8_t masked(std::uint32_t value, std::uint32_t mask) {
  if (mask == 0) return 0;
  while ((mask & 1) == 0) {
    mask >>= 1;
    value >>= 1;
  }
  return static_cast<std::uint8_t>(std::uint64_t{value & mask} * 255 / mask);
}

std::array<std::uint8_t, 3> colorAt(const Bytes& bytes, const Head& head, std::size_t row,
                                    std::size_t x) {
  if (head.bits > 8) {
    const auto count = static_cast<std::size_t>(head.bits) / 8;
    const std::uint32_t value = bytes.number(row + count * x, static_cast<int>(count));
    return {masked(value, head.masks[0]), masked(value, head.masks[1]),
            masked(value, head.masks[2])};
  }
  const auto perByte = 8 / static_cast<std::size_t>(head.bits);
  const auto shift = 8 - static_cast<std::size_t>(head.bits) * (x % perByte + 1);
  const std::uint32_t entry = bytes.byte(row + x / perByte) >> shift & ((1U << head.bits) - 1);
  if (entry >= head.colors) return {};
  const std::size_t at = head.palette + 4 * std::size_t{entry};
  return {static_cast<std::uint8_t>(bytes.byte(at + 2)),
          static_cast<std::uint8_t>(bytes.byte(at + 1)), static_cast<std::uint8_t>(bytes.byte(at))};
}

}  // namespace

Result<void> decodeBmpRows(std::string_view text, const std::string& name, PictureRows& rows) {
  const Bytes bytes(text);
  const auto head = readHead(bytes, name);
  if (!head) return failWith(head.error());
  const auto width = static_cast<std::size_t>(head->width);
  const auto height = static_cast<std::size_t>(head->height);
  rows.begin(head->width, head->height);
  std::vector<std::uint8_t> pixels(4 * width, 255);
  for (std::size_t y = 0; y < height; ++y) {
    const std::size_t row = head->pixels + head->stride * (head->isTopDown ? y : height - 1 - y);
    for (std::size_t x = 0; x < width; ++x)
      std::ranges::copy(colorAt(bytes, *head, row, x), pixels.data() + 4 * x);
    rows.add(pixels.data());
  }
  return {};
}

Result<Image> decodeBmp(std::string_view text, const std::string& name) {
  WholePicture whole;
  HOST_TRY(decodeBmpRows(text, name, whole));
  return std::move(whole.image);
}

}  // namespace host::io
