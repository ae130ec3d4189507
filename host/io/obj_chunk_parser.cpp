#include "host/io/obj_chunk_parser.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace host::io {
namespace {

// Indices further back than this would not fit the ids of any mesh.
constexpr Index kFurthestBack = -(1 << 30);

bool hasNegativeExponent(std::string_view number) {
  return number.find("e-") != std::string_view::npos || number.find("E-") != std::string_view::npos;
}

class ChunkParser {
 public:
  explicit ChunkParser(std::string_view text) : p_(text.data()), end_(p_ + text.size()) {}

  ObjChunk parse() {
    while (p_ < end_ && !chunk_.fault) parseLine();
    return std::move(chunk_);
  }

  const char* findCorner(CornerId corner, int channel) {
    wantedCorner_ = corner;
    wantedChannel_ = channel;
    while (p_ < end_ && !chunk_.fault && wantedAt_ == nullptr) parseLine();
    return wantedAt_ != nullptr ? wantedAt_ : p_;
  }

 private:
  ObjStatements& out() { return chunk_.statements; }

  bool failAt(const char* at, std::string reason) {
    if (!chunk_.fault) chunk_.fault = ObjFault{at, std::move(reason)};
    return false;
  }

  // A backslash at a line's end joins the next line to it.
  bool isContinuation(const char* p) const {
    if (*p != '\\') return false;
    ++p;
    if (p < end_ && *p == '\r') ++p;
    return p < end_ && *p == '\n';
  }

  // True when the statement has more to read.
  bool skipBlanks() {
    while (p_ < end_) {
      const char c = *p_;
      if (c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f') {
        ++p_;
      } else if (c == '\\' && isContinuation(p_)) {
        p_ = static_cast<const char*>(std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_))) +
             1;
      } else {
        return c != '\n' && c != '#';
      }
    }
    return false;
  }

  // A comment starts a word of its own, so that 1.#INF is a bad number and not the number 1.
  bool isAtWordEnd() const {
    return p_ == end_ || *p_ == ' ' || *p_ == '\t' || *p_ == '\n' || *p_ == '\r' || *p_ == '\v' ||
           *p_ == '\f' || (*p_ == '\\' && isContinuation(p_));
  }

  void skipComment() {
    const void* found =
        p_ < end_ ? std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_)) : nullptr;
    p_ = found ? static_cast<const char*>(found) + 1 : end_;
  }

  // The rest of a statement, continued lines included.
  std::string_view restOfStatement() {
    const char* begin = p_;
    while (p_ < end_ && *p_ != '\n' && *p_ != '#') {
      if (isContinuation(p_))
        p_ = static_cast<const char*>(std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_)));
      ++p_;
    }
    const char* last = p_;
    while (last > begin && (last[-1] == ' ' || last[-1] == '\t' || last[-1] == '\r')) --last;
    return {begin, static_cast<std::size_t>(last - begin)};
  }

  void parseLine() {
    if (!skipBlanks()) return skipComment();
    const char* word = p_;
    while (!isAtWordEnd()) ++p_;
    const std::string_view keyword(word, static_cast<std::size_t>(p_ - word));
    if (!parseStatement(keyword, word)) return;
    if (skipBlanks()) {
      failAt(p_, "unexpected text after the statement's end");
      return;
    }
    skipComment();
  }

  bool parseStatement(std::string_view keyword, const char* at) {
    if (keyword == "v") return parsePoint();
    if (keyword == "f") return parseFace(at);
    if (keyword == "vt") return parseUv();
    if (keyword == "vn") return parseNormal();
    if (keyword == "s") return parseSmoothing();
    if (keyword == "g") return addEvent(ObjEvent::Kind::Group);
    if (keyword == "o") return addEvent(ObjEvent::Kind::Object);
    if (keyword == "usemtl") return addEvent(ObjEvent::Kind::Material);
    if (keyword == "mtllib") return addEvent(ObjEvent::Kind::Library);
    if (keyword.find('\0') != std::string_view::npos)
      return failAt(at, "this is not text; is it an OBJ file?");
    skipBlanks();
    restOfStatement();
    constexpr std::size_t kLongestNamed = 24, kMostNamed = 64;
    const bool isNamed = keyword.size() <= kLongestNamed && out().warnings.size() < kMostNamed;
    ++out().warnings[isNamed ? "ignored statement \"" + std::string(keyword) + "\""
                             : "ignored other statements"];
    return true;
  }

  bool addEvent(ObjEvent::Kind kind) {
    skipBlanks();
    out().events.push_back({kind, faceCount(), restOfStatement(), 0});
    return true;
  }

  FaceId faceCount() { return static_cast<FaceId>(out().faceOffsets.size()) - 1; }

  bool parseSmoothing() {
    if (!skipBlanks()) return failAt(p_, "expected a smoothing group or \"off\"");
    const char* at = p_;
    const std::string_view text = restOfStatement();
    std::uint32_t group = 0;
    if (text == "on") {
      group = 1;
    } else if (text != "off") {
      const auto [rest, status] = std::from_chars(text.data(), text.data() + text.size(), group);
      if (status != std::errc() || rest != text.data() + text.size())
        return failAt(at, "expected a smoothing group or \"off\"");
    }
    out().events.push_back({ObjEvent::Kind::Smoothing, faceCount(), text, group});
    return true;
  }

  bool parseFloat(float& value) {
    if (!skipBlanks()) return failAt(p_, "expected a number");
    const char* at = p_;
    if (*p_ == '+') ++p_;
    const auto [rest, status] = std::from_chars(p_, end_, value);
    p_ = rest;
    if (status == std::errc() && std::isfinite(value) && isAtWordEnd()) return true;
    return parseUnusualFloat(at, value);
  }

  // What a float does not hold: too small becomes zero, too large and not-a-number are faults.
  bool parseUnusualFloat(const char* at, float& value) {
    double wide = 0;
    p_ = *at == '+' ? at + 1 : at;
    const auto [rest, status] = std::from_chars(p_, end_, wide);
    p_ = rest;
    if (status == std::errc::invalid_argument || !isAtWordEnd())
      return failAt(at, "expected a number");
    const std::string_view number(at, static_cast<std::size_t>(rest - at));
    if (status == std::errc::result_out_of_range) wide = hasNegativeExponent(number) ? 0 : HUGE_VAL;
    value = static_cast<float>(wide);
    if (!std::isfinite(value)) return failAt(at, "the number is not finite");
    return true;
  }

  bool parsePoint() {
    float x[7];
    int n = 0;
    for (; n < 7 && (n < 3 || skipBlanks()); ++n)
      if (!parseFloat(x[n])) return false;
    if (n == 5)
      return failAt(p_, "a point has 3 or 4 coordinates, and 3 or 4 colour values after three");
    auto& s = out();
    if (n >= 6) {
      s.colors.resize(s.points.size(), {-1, 0, 0, 1});
      s.colors.push_back({x[3], x[4], x[5], n == 7 ? x[6] : 1});
    } else if (!s.colors.empty()) {
      s.colors.push_back({-1, 0, 0, 1});
    }
    s.points.push_back({x[0], x[1], x[2]});
    return true;
  }

  bool parseUv() {
    math::Vec2f uv;
    float w = 0;
    if (!parseFloat(uv.u)) return false;
    if (skipBlanks() && !parseFloat(uv.v)) return false;
    if (skipBlanks() && !parseFloat(w)) return false;
    out().uvs.push_back(uv);
    return true;
  }

  bool parseNormal() {
    math::Vec3f n;
    if (!parseFloat(n.x) || !parseFloat(n.y) || !parseFloat(n.z)) return false;
    out().normals.push_back(n);
    return true;
  }

  // Reads one index. Positive ones become 0-based; negative ones count back from `count` and may
  // reach before the chunk's start, which only the whole file can judge.
  bool parseIndex(std::size_t count, Index& index, std::vector<CornerId>& relative, int channel) {
    const char* at = p_;
    const auto corner = static_cast<CornerId>(out().cornerPoints.size());
    if (corner == wantedCorner_ && channel == wantedChannel_) wantedAt_ = at;
    if (p_ < end_ && *p_ == '+') ++p_;
    Index value = 0;
    const auto [rest, status] = std::from_chars(p_, end_, value);
    p_ = rest;
    if (status == std::errc::result_out_of_range || value < kFurthestBack)
      return failAt(at, "the index is out of range");
    if (status != std::errc()) return failAt(at, "expected an index");
    if (value == 0) return failAt(at, "index 0 is out of range; indices start at 1");
    if (value > 0) {
      index = value - 1;
    } else {
      index = static_cast<Index>(static_cast<std::int64_t>(count) + value);
      relative.push_back(corner);
    }
    return true;
  }

  bool parseCorner() {
    auto& s = out();
    Index point = 0, uv = ObjStatements::kAbsent, normal = ObjStatements::kAbsent;
    const char* at = p_;
    if (!parseIndex(s.points.size(), point, chunk_.relative.points, 0)) return false;
    if (p_ < end_ && *p_ == '/') {
      ++p_;
      if (!isAtWordEnd() && *p_ != '/' && !parseIndex(s.uvs.size(), uv, chunk_.relative.uvs, 1))
        return false;
      if (p_ < end_ && *p_ == '/') {
        ++p_;
        if (!isAtWordEnd() && !parseIndex(s.normals.size(), normal, chunk_.relative.normals, 2))
          return false;
      }
    }
    if (!isAtWordEnd()) return failAt(at, "expected a corner like 1, 1/2, 1/2/3 or 1//3");
    pushOptional(s.cornerUvs, uv);
    pushOptional(s.cornerNormals, normal);
    s.cornerPoints.push_back(point);
    return true;
  }

  // An index array stays empty until the first corner that has one.
  void pushOptional(std::vector<Index>& ids, Index id) {
    if (ids.empty() && id == ObjStatements::kAbsent) return;
    ids.resize(out().cornerPoints.size(), ObjStatements::kAbsent);
    ids.push_back(id);
  }

  bool parseFace(const char* at) {
    const std::size_t before = out().cornerPoints.size();
    while (skipBlanks())
      if (!parseCorner()) return false;
    const std::size_t corners = out().cornerPoints.size() - before;
    if (corners < 3)
      return failAt(at, "a face needs at least 3 corners, this one has " + std::to_string(corners));
    out().faceOffsets.push_back(static_cast<CornerId>(out().cornerPoints.size()));
    return true;
  }

  const char* p_;
  const char* end_;
  ObjChunk chunk_;
  CornerId wantedCorner_ = kNone;
  int wantedChannel_ = 0;
  const char* wantedAt_ = nullptr;
};

}  // namespace

ObjChunk parseObjChunk(std::string_view text) {
  return ChunkParser(text).parse();
}

const char* findObjCorner(std::string_view text, CornerId corner, int channel) {
  return ChunkParser(text).findCorner(corner, channel);
}

}  // namespace host::io
