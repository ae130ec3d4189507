#include "host/ops/uv/layout_board.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace host::ops::flat {
namespace {

/// Where a triangle lies between two heights: the least and greatest x, if anywhere.
struct Extent {
  double least = 1e300, most = -1e300;
};
Extent between(const std::array<Point, 3>& t, double low, double high) {
  Extent extent;
  for (std::size_t k = 0; k < 3; ++k) {
    const Point a = t[k], b = t[(k + 1) % 3];
    if (std::max(a.y, b.y) < low || std::min(a.y, b.y) > high) continue;
    double from = 0, to = 1;
    if (a.y != b.y) {
      const double atLow = (low - a.y) / (b.y - a.y), atHigh = (high - a.y) / (b.y - a.y);
      from = std::max(0.0, std::min(atLow, atHigh));
      to = std::min(1.0, std::max(atLow, atHigh));
    }
    for (const double part : {from, to}) {
      const double x = a.x + part * (b.x - a.x);
      extent.least = std::min(extent.least, x);
      extent.most = std::max(extent.most, x);
    }
  }
  return extent;
}

/// The bits from `begin` to `end`, both included, that lie in word `w`.
std::uint64_t wordOf(std::int32_t w, std::int32_t begin, std::int32_t end) {
  const std::int32_t from = std::max(begin - 64 * w, 0), to = std::min(end - 64 * w, 63);
  return (~std::uint64_t{0} >> (63 - to)) & (~std::uint64_t{0} << from);
}

/// Reads the runs of set bits, row by row.
void addRuns(CellMask& mask, const std::vector<std::uint64_t>& bits, std::size_t words) {
  for (std::int32_t y = 0; y < mask.height; ++y) {
    const std::uint64_t* row = bits.data() + at(y) * words;
    const auto isSet = [&](std::int32_t x) { return (row[x / 64] >> (x % 64) & 1) != 0; };
    for (std::int32_t x = 0; x < mask.width;) {
      if (!isSet(x)) {
        const std::uint64_t rest = row[x / 64] >> (x % 64);
        x = rest ? x + std::countr_zero(rest) : (x / 64 + 1) * 64;
        continue;
      }
      const std::int32_t begin = x;
      while (x < mask.width && isSet(x)) ++x;
      mask.runs.push_back({begin, x});
    }
    mask.rowStart.push_back(static_cast<std::int32_t>(mask.runs.size()));
  }
}

constexpr std::size_t kRimCells = 160;  ///< looked at; more would only cost

void addRim(CellMask& mask) {
  std::vector<std::array<std::int32_t, 2>> all;
  const auto isIn = [&](std::int32_t x, std::int32_t y) {
    if (y < 0 || y >= mask.height) return false;
    return std::ranges::any_of(mask.row(y), [&](CellRun r) { return r.begin <= x && x < r.end; });
  };
  for (std::int32_t y = 0; y < mask.height; ++y)
    for (const CellRun& run : mask.row(y)) {
      all.push_back({run.begin - 1, y});
      all.push_back({run.end, y});
      for (std::int32_t x = run.begin; x < run.end; x += 2)
        for (const std::int32_t beside : {y - 1, y + 1})
          if (!isIn(x, beside)) all.push_back({x, beside});
    }
  const std::size_t count = std::min(all.size(), kRimCells);
  for (std::size_t i = 0; i < count; ++i) mask.rim.push_back(all[i * all.size() / count]);
}

}  // namespace

CellMask touchedCells(std::span<const std::array<Point, 3>> triangles, double cellSize,
                      std::optional<Point> corner) {
  CellMask mask;
  Point low{1e300, 1e300}, high{-1e300, -1e300};
  for (const auto& t : triangles)
    for (const Point& p : t) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
  // A hair of room, so that rounding of the coordinates leaves no cell.
  const double hair = 1e-3 * cellSize;
  mask.origin = corner ? *corner : Point{low.x - hair, low.y - hair};
  const double perCell = 1 / cellSize;
  mask.width = static_cast<std::int32_t>(std::ceil((high.x - mask.origin.x + hair) * perCell));
  mask.height = static_cast<std::int32_t>(std::ceil((high.y - mask.origin.y + hair) * perCell));
  const std::size_t words = at(mask.width) / 64 + 1;
  std::vector<std::uint64_t> bits(words * at(mask.height), 0);
  const auto columns = [&](const Extent& e) -> std::array<std::int32_t, 2> {
    return {
        std::max(0,
                 static_cast<std::int32_t>(std::floor((e.least - hair - mask.origin.x) * perCell))),
        std::min(mask.width - 1,
                 static_cast<std::int32_t>(std::floor((e.most + hair - mask.origin.x) * perCell)))};
  };
  // Of a dense shell most triangles lie in cells that those before have taken: nothing to be done.
  const auto isFull = [&](const Extent& box, std::int32_t first, std::int32_t last) {
    const auto [begin, end] = columns(box);
    for (std::int32_t y = first; y <= last; ++y)
      for (std::int32_t w = begin / 64; w <= end / 64; ++w) {
        const std::uint64_t wanted = wordOf(w, begin, end);
        if ((bits[at(y) * words + at(w)] & wanted) != wanted) return false;
      }
    return true;
  };
  for (const auto& t : triangles) {
    const double bottom = std::min({t[0].y, t[1].y, t[2].y}) - hair - mask.origin.y;
    const double top = std::max({t[0].y, t[1].y, t[2].y}) + hair - mask.origin.y;
    const auto first = std::max(0, static_cast<std::int32_t>(std::floor(bottom * perCell)));
    const auto last =
        std::min(mask.height - 1, static_cast<std::int32_t>(std::floor(top * perCell)));
    if (isFull({std::min({t[0].x, t[1].x, t[2].x}), std::max({t[0].x, t[1].x, t[2].x})}, first,
               last))
      continue;
    for (std::int32_t y = first; y <= last; ++y) {
      const Extent e = between(t, mask.origin.y + y * cellSize - hair,
                               mask.origin.y + (y + 1) * cellSize + hair);
      if (e.least > e.most) continue;
      const auto [begin, end] = columns(e);
      std::uint64_t* row = bits.data() + at(y) * words;
      for (std::int32_t w = begin / 64; w <= end / 64; ++w) {
        row[w] |= wordOf(w, begin, end);
      }
    }
  }
  addRuns(mask, bits, words);
  addRim(mask);
  return mask;
}

Board::Board(std::int32_t width, std::int32_t height, std::int32_t gutter)
    : width_(width),
      height_(height),
      gutter_(gutter),
      words_(at(width) / 64 + 2),
      powers_(std::bit_width(static_cast<unsigned>(width))) {
  longestFree_.assign(at(height), width - 2 * gutter);
  hits_.assign(at(powers_) * at(height) * words_, 0);
}

double Board::contact(const CellMask& mask, Place place) const {
  std::size_t touching = 0;
  for (const auto& [dx, dy] : mask.rim) {
    const std::int32_t x = place.x + dx, y = place.y + dy;
    if (x < gutter_ || y < gutter_ || x >= width_ - gutter_) {
      ++touching;
    } else if (y < height_) {
      const Word word = hits_[wordOf(0, y) + at(x) / 64];
      touching += word >> (x % 64) & 1;
    }
  }
  return static_cast<double>(touching) /
         static_cast<double>(std::max<std::size_t>(1, mask.rim.size()));
}

/// Runs of a mask, the longest first and the others spread over its rows, so that what is taken
/// shows early.
struct Board::RunAt {
  std::int32_t y, begin, length;
};
std::vector<Board::RunAt> Board::spreadRuns(const CellMask& mask) {
  std::vector<RunAt> runs;
  runs.reserve(mask.runs.size());
  for (std::int32_t y = 0; y < mask.height; ++y)
    for (const CellRun& run : mask.row(y)) runs.push_back({y, run.begin, run.end - run.begin});
  const auto longest = std::ranges::max_element(runs, {}, &RunAt::length);
  if (longest != runs.end()) std::rotate(runs.begin(), longest, longest + 1);
  std::stable_sort(runs.begin() + (runs.empty() ? 0 : 1), runs.end(),
                   [](const RunAt& a, const RunAt& b) {
                     return std::countr_zero(static_cast<unsigned>(a.y) | 1u << 30) >
                            std::countr_zero(static_cast<unsigned>(b.y) | 1u << 30);
                   });
  return runs;
}

/// Marks in `taken` the places in row y where some run hits something; narrows [from, to] to the
/// words that still have free places. False when none has.
bool Board::rowHasRoom(const std::vector<RunAt>& runs, std::int32_t y, std::vector<Word>& taken,
                       std::size_t& from, std::size_t& to) const {
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const RunAt& run = runs[i];
    if (run.length > longestFree_[at(y + run.y)]) return false;
    const int power = std::bit_width(static_cast<unsigned>(run.length)) - 1;
    const Word* hits = hits_.data() + wordOf(power, y + run.y);
    for (const std::int32_t offset : {run.begin, run.begin + run.length - (1 << power)}) {
      const std::size_t skip = at(offset) / 64;
      const int shift = offset % 64;
      const std::size_t end = std::min(to + 1, words_ - 1 - skip);
      if (shift == 0)
        for (std::size_t w = from; w < end; ++w) taken[w] |= hits[w + skip];
      else
        for (std::size_t w = from; w < end; ++w)
          taken[w] |= hits[w + skip] >> shift | hits[w + skip + 1] << (64 - shift);
      if (run.length == 1 << power) break;
    }
    if (i % 4 != 3 && i + 1 != runs.size()) continue;
    while (from < to && taken[from] == ~Word{0}) ++from;
    while (to > from && taken[to] == ~Word{0}) --to;
    if (taken[from] == ~Word{0}) return false;
  }
  return true;
}

void Board::places(const CellMask& mask, std::int32_t band, std::int32_t before,
                   std::vector<Place>& out) const {
  const std::int32_t lastX = width_ - gutter_ - mask.width;
  std::int32_t lastY = std::min(height_ - gutter_ - mask.height, before - 1);
  if (lastX < gutter_) return;
  const std::vector<RunAt> runs = spreadRuns(mask);
  std::vector<Word> outside(words_, ~Word{0});
  for (std::int32_t x = gutter_; x <= lastX; ++x) outside[at(x) / 64] &= ~(Word{1} << (x % 64));
  std::vector<Word> taken(words_);
  bool hasPlace = false;
  for (std::int32_t y = gutter_; y <= lastY; ++y) {
    std::copy(outside.begin(), outside.end(), taken.begin());
    std::size_t from = at(gutter_) / 64;
    std::size_t to = at(lastX) / 64;
    if (!rowHasRoom(runs, y, taken, from, to)) continue;
    bool wasTaken = true;
    for (std::size_t w = from; w <= to; ++w) {
      // Bits where a stretch of free places begins, and those behind its last one.
      Word changes = taken[w] ^ (taken[w] << 1 | Word{wasTaken});
      wasTaken = taken[w] >> 63 != 0;
      for (; changes != 0; changes &= changes - 1) {
        const int bit = std::countr_zero(changes);
        const bool begins = (taken[w] >> bit & 1) == 0;
        out.push_back({static_cast<std::int32_t>(64 * w) + bit - (begins ? 0 : 1), y});
      }
    }
    if (!wasTaken) out.push_back({static_cast<std::int32_t>(64 * to) + 63, y});
    if (!hasPlace) lastY = std::min(lastY, y + band);
    hasPlace = true;
  }
}

void Board::take(const CellMask& mask, Place place) {
  const std::int32_t bottom = std::max(0, place.y - gutter_);
  const std::int32_t top = std::min(height_ - 1, place.y + mask.height - 1 + gutter_);
  for (std::int32_t y = 0; y < mask.height; ++y)
    for (const CellRun& run : mask.row(y)) {
      const std::int32_t begin = std::max(0, place.x + run.begin - gutter_);
      const std::int32_t end = std::min(width_, place.x + run.end + gutter_);
      if (begin >= end) continue;
      for (std::int32_t v = std::max(bottom, place.y + y - gutter_);
           v <= std::min(top, place.y + y + gutter_); ++v) {
        Word* row = hits_.data() + wordOf(0, v);
        for (std::int32_t w = begin / 64; w <= (end - 1) / 64; ++w) {
          const std::int32_t from = std::max(begin - 64 * w, 0),
                             to = std::min(end - 1 - 64 * w, 63);
          row[w] |= (~Word{0} >> (63 - to)) & (~Word{0} << from);
        }
      }
    }
  for (std::int32_t y = bottom; y <= top; ++y) {
    for (int power = 1; power < powers_; ++power) {
      const Word* half = hits_.data() + wordOf(power - 1, y);
      Word* row = hits_.data() + wordOf(power, y);
      const std::size_t distance = std::size_t{1} << (power - 1);
      const std::size_t skip = distance / 64;
      const int shift = static_cast<int>(distance % 64);
      for (std::size_t w = 0; w + skip + 1 < words_; ++w)
        row[w] =
            half[w] | (shift == 0 ? half[w + skip]
                                  : half[w + skip] >> shift | half[w + skip + 1] << (64 - shift));
    }
    std::int32_t& longest = longestFree_[at(y)];
    longest = longestFreeRun(y, longest);
  }
}

/// The longest run without a hit in a row that had none longer than `before`.
std::int32_t Board::longestFreeRun(std::int32_t y, std::int32_t before) const {
  std::int32_t longest = 0, run = 0;
  const Word* row = hits_.data() + wordOf(0, y);
  for (std::int32_t x = gutter_; x < width_ - gutter_ && longest < before;) {
    const Word rest = row[x / 64] >> (x % 64);
    const std::int32_t inWord = 64 - x % 64;
    if ((rest & 1) != 0) {
      x += std::min(inWord, static_cast<std::int32_t>(std::countr_one(rest)));
      run = 0;
      continue;
    }
    const std::int32_t step =
        std::min({inWord, static_cast<std::int32_t>(std::countr_zero(rest)), width_ - gutter_ - x});
    x += step;
    run += step;
    longest = std::max(longest, run);
  }
  return longest;
}

}  // namespace host::ops::flat
