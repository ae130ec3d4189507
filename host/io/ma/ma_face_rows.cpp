#include "host/io/ma/ma_face_rows.h"

#include <fmt/format.h>

namespace host::io {
namespace {

using Chunk = MaMeshRows::Chunk;

tl::unexpected<MaFault> faultAt(std::size_t offset, std::string reason) {
  return tl::unexpected<MaFault>(MaFault{offset, std::move(reason)});
}

/// Reads the face rows of one chunk.
class FaceParser {
 public:
  FaceParser(const MaFaceScope& scope, const Chunk& chunk)
      : scope_(scope), chunk_(chunk), row_(chunk.body) {}

  MaResult<MaFaceRows> parse() {
    const auto expected = static_cast<std::size_t>(chunk_.last) - at(chunk_.first) + 1;
    while (!row_.isAtEnd()) {
      const char* start = row_.position();
      const std::string_view keyword = row_.word();
      bool isRead = false;
      if (keyword == "f" || keyword == "h")
        isRead = readLoop(keyword == "h");
      else if (keyword == "mu" || keyword == "mc")
        isRead = readIds(keyword == "mu");
      else
        reason_ = fmt::format("'{}' is no row of a face", keyword.substr(0, 20));
      if (!isRead) return faultAt(offsetOf(start), std::move(reason_));
      if (rows_.sizes.size() > expected) break;
    }
    if (rows_.sizes.size() != expected)
      return faultAt(chunk_.offset,
                     fmt::format("{} faces are announced here, but {} follow", expected,
                                 rows_.sizes.size() > expected ? "more" : "fewer"));
    return std::move(rows_);
  }

 private:
  std::size_t offsetOf(const char* p) const {
    return static_cast<std::size_t>(p - scope_.text.data());
  }
  bool refuse(std::string reason) {
    reason_ = std::move(reason);
    return false;
  }

  /// Edge e is walked forwards, -e-1 backwards; corner k is where the k-th walk starts.
  bool readLoop(bool isHole) {
    if (isHole && rows_.sizes.empty()) return refuse("a hole comes before its face");
    Index count = 0;
    if (!row_.read(count) || count < 3) return refuse("a loop has three edges or more");
    isInHole_ = isHole;
    loopSize_ = count;
    const std::size_t base = rows_.vertices.size();
    VertexId start = kNone, here = kNone;
    for (Index k = 0; k < count; ++k) {
      Index code = 0;
      if (!row_.read(code)) return refuse(fmt::format("a loop of {} edges is cut short", count));
      const EdgeId edge = code >= 0 ? code : -(code + 1);
      if (at(edge) >= scope_.edges.size())
        return refuse(fmt::format("edge {} does not exist: the mesh has {} edges", edge,
                                  scope_.edges.size()));
      const mesh::EdgeVertices ends = scope_.edges[at(edge)];
      const VertexId from = code >= 0 ? ends.a : ends.b;
      if (k > 0 && from != here)
        return refuse(fmt::format("edge {} does not go on where the one before ends", edge));
      if (k == 0) start = from;
      here = code >= 0 ? ends.b : ends.a;
      if (isHole) continue;
      rows_.vertices.push_back(from);
      rows_.edges.push_back(edge);
    }
    if (here != start) {
      rows_.vertices.resize(base);
      rows_.edges.resize(base);
      return refuse("a loop does not end where it starts");
    }
    if (isHole)
      ++rows_.holes;
    else
      rows_.sizes.push_back(count);
    return true;
  }

  bool readIds(bool isUv) {
    if (rows_.sizes.empty()) return refuse("a row of ids comes before its face");
    Index set = 0, count = 0;
    if (!row_.read(set) || !row_.read(count)) return refuse("a row of ids names no set");
    const std::vector<Index>& limits = isUv ? scope_.uvCounts : scope_.colorCounts;
    if (set < 0 || at(set) >= limits.size())
      return refuse(fmt::format("{} set {} does not exist", isUv ? "UV" : "colour", set));
    if (count != loopSize_)
      return refuse(fmt::format("a loop of {} corners has {} ids", loopSize_, count));
    std::vector<Index>* ids = nullptr;
    if (!isInHole_) {
      ids = &idsOf(isUv ? rows_.uvs : rows_.colors, set);
      ids->resize(rows_.vertices.size() - at(count), kNone);
    }
    const Index lowest = isUv ? 0 : kNone, limit = limits[at(set)];
    for (Index k = 0; k < count; ++k) {
      Index id = 0;
      if (!row_.read(id)) return refuse(fmt::format("a row of {} ids is cut short", count));
      if (id < lowest || id >= limit)
        return refuse(
            fmt::format("{} {} does not exist: the set has {}", isUv ? "UV" : "colour", id, limit));
      if (ids) ids->push_back(id);
    }
    return true;
  }

  static std::vector<Index>& idsOf(std::vector<MaSetIds>& sets, Index set) {
    for (MaSetIds& each : sets)
      if (each.set == set) return each.ids;
    sets.push_back({set, {}});
    return sets.back().ids;
  }

  const MaFaceScope& scope_;
  const Chunk& chunk_;
  MaRow row_;
  MaFaceRows rows_;
  Index loopSize_ = 0;
  bool isInHole_ = false;
  std::string reason_;
};

}  // namespace

MaResult<MaFaceRows> parseFaceRows(const MaFaceScope& scope, const Chunk& chunk) {
  return FaceParser(scope, chunk).parse();
}

}  // namespace host::io
