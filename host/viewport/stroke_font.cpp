#include "host/viewport/stroke_font.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host::viewport {

namespace {

// A glyph is a row of strokes, separated by blanks; a stroke is a row of digit pairs, x then y, on
// a grid in which the baseline is at 2, the x height at 6 and capitals reach 8; descenders go down
// to 0. A glyph is as wide as its rightmost point.
constexpr double kBaseline = 2;
constexpr double kCapHeight = 6;
constexpr double kGap = 1.7;
constexpr double kSpaceWidth = 2.0;
constexpr std::string_view kBox = "0208484202";

constexpr std::array<std::string_view, 95> kGlyphs = {
    "",                                  // space
    "0804 0302",                         // !
    "0806 2826",                         // "
    "1812 3832 0646 0444",               // #
    "473818070615354443321203 2921",     // $
    "0248 0818170708 3343423233",        // %
    "4216172837360403123244",            // &
    "0806",                              // '
    "18060412",                          // (
    "08161402",                          // )
    "2723 0644 0446",                    // *
    "2723 0545",                         // +
    "131201",                            // ,
    "0535",                              // -
    "0302",                              // .
    "0248",                              // /
    "182837332212030718",                // 0
    "072822 0242",                       // 1
    "07183847460242",                    // 2
    "0718384746354443321203 1535",       // 3
    "32380444",                          // 4
    "480805354443321203",                // 5
    "4738180703123243443505",            // 6
    "084812",                            // 7
    "15060718384746351504031232434435",  // 8
    "0312324347381807061545",            // 9
    "0302 0605",                         // :
    "131201 1615",                       // ;
    "370533",                            // <
    "0636 0434",                         // =
    "073503",                            // >
    "07183847462524 2322",               // ?
    "3212030718384744343626152434",      // @
    "022842 1434",                       // A
    "02083847463505 3544433202",         // B
    "4738180703123243",                  // C
    "02082846442202",                    // D
    "48080242 0535",                     // E
    "480802 0535",                       // F
    "47381807031232434525",              // G
    "0802 4842 0545",                    // H
    "0802",                              // I
    "4843321203",                        // J
    "0802 4804 1542",                    // K
    "080242",                            // L
    "0208254842",                        // M
    "02084248",                          // N
    "183847433212030718",                // O
    "02083847463505",                    // P
    "183847433212030718 2442",           // Q
    "02083847463505 2542",               // R
    "473818070615354443321203",          // S
    "0848 2822",                         // T
    "080312324348",                      // U
    "082248",                            // V
    "0812263248",                        // W
    "0248 0842",                         // X
    "082548 2522",                       // Y
    "08480242",                          // Z
    "18080212",                          // [
    "0842",                              // backslash
    "08181202",                          // ]
    "062846",                            // ^
    "0141",                              // _
    "0817",                              // `
    "3526160503122233 3632",             // a
    "0802 0516263533221203",             // b
    "3526160503122233",                  // c
    "3832 3526160503122233",             // d
    "04343526160503122233",              // e
    "281712 0626",                       // f
    "3526160503122233 3631201001",       // g
    "0802 0516263532",                   // h
    "0602 0807",                         // i
    "161100 1817",                       // j
    "0802 3603 1432",                    // k
    "080312",                            // l
    "0602 05162522 25364542",            // m
    "0602 0516263532",                   // n
    "162635332212030516",                // o
    "0600 0516263533221203",             // p
    "3630 3526160503122233",             // q
    "0602 051626",                       // r
    "3526160533221203",                  // s
    "181322 0626",                       // t
    "0603122233 3632",                   // u
    "062246",                            // v
    "0612253246",                        // w
    "0236 0632",                         // x
    "0622 461000",                       // y
    "06360232",                          // z
    "28171605141322",                    // {
    "0801",                              // |
    "08171625141302",                    // }
    "04153445",                          // ~
};

std::string_view glyph(char c) {
  const auto index = std::size_t{static_cast<unsigned char>(c)} - 32;
  return index < kGlyphs.size() ? kGlyphs[index] : kBox;
}

/// Width on the grid.
double glyphWidth(std::string_view strokes) {
  if (strokes.empty()) return kSpaceWidth;
  int width = 0;
  bool isX = true;
  for (const char c : strokes) {
    if (c == ' ') continue;
    if (isX) width = std::max(width, c - '0');
    isX = !isX;
  }
  return width;
}

}  // namespace

double textWidth(std::string_view text, double height) {
  double width = 0;
  for (const char c : text) width += glyphWidth(glyph(c)) + kGap;
  return std::max(0.0, width - kGap) * height / kCapHeight;
}

void appendText(std::vector<Vec3f>& segments, std::string_view text, double x, double y,
                double height) {
  const double unit = height / kCapHeight;
  double pen = x;
  for (const char c : text) {
    const std::string_view strokes = glyph(c);
    const auto place = [&](std::size_t i) {
      return Vec3{pen + (strokes[i] - '0') * unit, y + (strokes[i + 1] - '0' - kBaseline) * unit, 0}
          .toFloat();
    };
    for (std::size_t i = 0; i + 3 < strokes.size(); i += 2) {
      if (strokes[i + 2] == ' ') {
        ++i;  // the step of two then lands behind the blank
        continue;
      }
      segments.push_back(place(i));
      segments.push_back(place(i + 2));
    }
    pen += (glyphWidth(strokes) + kGap) * unit;
  }
}

std::vector<Vec3f> textStrokes(const TextItem& item, double x, double y) {
  const double width = textWidth(item.text, item.height);
  const double share = item.align == TextAlign::Left     ? 0.0
                       : item.align == TextAlign::Center ? 0.5
                                                         : 1.0;
  std::vector<Vec3f> segments;
  appendText(segments, item.text, std::floor(x - width * share) + 0.5, std::floor(y) + 0.5,
             item.height);
  return segments;
}

}  // namespace host::viewport
