#include "host/io/obj_reader.h"

#include <algorithm>
#include <utility>

#include "host/base/cancel.h"
#include "host/base/cancel_poll.h"
#include "host/io/obj_face_sets.h"
#include "host/io/obj_normals.h"
#include "host/io/obj_smoothing.h"
#include "host/io/obj_statements.h"
#include "host/io/whole_file.h"

namespace host::io {
namespace {

/// Maps ids of a whole file to ids of one object. The table is shared by all objects; each one's
/// cost is its own.
class IdPool {
 public:
  explicit IdPool(std::size_t count) : newIds_(count, kNone) {}

  // The ids in use, ascending; `newId` then gives each one's place.
  std::vector<Index> gather(std::span<const Index> ids) {
    std::vector<Index> used;
    for (const Index id : ids)
      if (id >= 0 && newIds_[at(id)] == kNone) {
        newIds_[at(id)] = 0;
        used.push_back(id);
      }
    std::sort(used.begin(), used.end());
    for (std::size_t i = 0; i < used.size(); ++i) newIds_[at(used[i])] = static_cast<Index>(i);
    return used;
  }
  [[nodiscard]] Index newId(Index id) const { return id < 0 ? kNone : newIds_[at(id)]; }
  void release(std::span<const Index> used) {
    for (const Index id : used) newIds_[at(id)] = kNone;
  }

 private:
  std::vector<Index> newIds_;
};

class SceneBuilder {
 public:
  SceneBuilder(ObjStatements statements, const ObjReadOptions& options)
      : s_(std::move(statements)), options_(options) {}

  Result<ObjScene> build() {
    scene_.warnings = std::move(s_.warnings);
    joinRepeatedCorners();
    dropPartialUvs();
    for (const ObjEvent& event : s_.events)
      if (event.kind == ObjEvent::Kind::Library) scene_.materialLibraries.emplace_back(event.text);
    const std::vector<ObjObjectSpan> spans = findObjectSpans(s_.events, faceCount());
    parts_ = collectFaceParts(s_, spans, scene_.warnings);
    if (spans.size() == 1) {
      if (!s_.points.empty()) HOST_TRY(addWholeFile(spans.front()));
      return std::move(scene_);
    }
    IdPool points(s_.points.size()), uvs(s_.uvs.size());
    isPointUsed_.assign(s_.points.size(), 0);
    for (const ObjObjectSpan& span : spans) HOST_TRY(addObject(span, points, uvs));
    const auto unused = std::count(isPointUsed_.begin(), isPointUsed_.end(), 0);
    if (unused > 0) scene_.warnings["dropped unused point"] += static_cast<std::size_t>(unused);
    return std::move(scene_);
  }

 private:
  [[nodiscard]] FaceId faceCount() const { return static_cast<FaceId>(s_.faceOffsets.size()) - 1; }

  // Keeps the loops legal: no edge from a point to itself, no face of fewer than three corners.
  void joinRepeatedCorners() {
    const auto isRepeated = [&](CornerId first, CornerId end, CornerId c) {
      return s_.cornerPoints[at(c)] == s_.cornerPoints[at(c == first ? end - 1 : c - 1)];
    };
    bool hasAny = false;
    for (FaceId f = 0; f < faceCount() && !hasAny; ++f)
      for (CornerId c = s_.faceOffsets[f]; c < s_.faceOffsets[at(f) + 1]; ++c)
        hasAny |= isRepeated(s_.faceOffsets[f], s_.faceOffsets[at(f) + 1], c);
    if (!hasAny) return;

    std::vector<CornerId> offsets{0}, kept;
    PerElement<FaceId, FaceId> newFace(faceCount() + 1);
    for (FaceId f = 0; f < faceCount(); ++f) {
      newFace[f] = static_cast<FaceId>(offsets.size()) - 1;
      const CornerId first = s_.faceOffsets[f], end = s_.faceOffsets[at(f) + 1];
      const std::size_t before = kept.size();
      for (CornerId c = first; c < end; ++c)
        if (!isRepeated(first, end, c)) kept.push_back(c);
      const std::size_t count = kept.size() - before;
      if (count < at(end - first)) ++scene_.warnings["face with repeated points"];
      if (count < 3) {
        kept.resize(before);
        ++scene_.warnings["dropped face without area"];
      } else {
        offsets.push_back(static_cast<CornerId>(kept.size()));
      }
    }
    newFace.back() = static_cast<FaceId>(offsets.size()) - 1;
    for (std::vector<Index>* ids : {&s_.cornerPoints, &s_.cornerUvs, &s_.cornerNormals}) {
      if (ids->empty()) continue;
      for (std::size_t i = 0; i < kept.size(); ++i) (*ids)[i] = (*ids)[at(kept[i])];
      ids->resize(kept.size());
    }
    s_.faceOffsets = std::move(offsets);
    for (ObjEvent& event : s_.events) event.face = newFace[event.face];
  }

  void dropPartialUvs() {
    if (s_.cornerUvs.empty()) return;
    for (FaceId f = 0; f < faceCount(); ++f) {
      const auto begin = s_.cornerUvs.begin() + s_.faceOffsets[f],
                 end = s_.cornerUvs.begin() + s_.faceOffsets[at(f) + 1];
      const auto absent = std::count(begin, end, ObjStatements::kAbsent);
      if (absent != 0 && absent != end - begin)
        ++scene_.warnings["face with UVs on some corners only"];
      if (absent != 0) std::fill(begin, end, kNone);
    }
  }

  Result<void> addWholeFile(const ObjObjectSpan& span) {
    PerElement<FaceId, Index> counts(faceCount());
    for (std::size_t f = 0; f < counts.size(); ++f)
      counts[f] = s_.faceOffsets[f + 1] - s_.faceOffsets[f];
    auto mesh = mesh::buildMesh(std::move(s_.points), counts, viewIds<VertexId>(s_.cornerPoints));
    if (!mesh) return failWith(std::move(mesh).error());
    mesh::UvSet& set = mesh->editUvSet(0);
    set.points = std::move(s_.uvs);
    if (std::any_of(s_.cornerUvs.begin(), s_.cornerUvs.end(), [](UvId id) { return id >= 0; }))
      set.cornerIds = copyIds<UvId>(s_.cornerUvs);
    setColors(*mesh, std::move(s_.colors));
    return finishObject(span, std::move(*mesh), s_.cornerNormals);
  }

  Result<void> addObject(const ObjObjectSpan& span, IdPool& pointPool, IdPool& uvPool) {
    const auto first = at(s_.faceOffsets[span.first]), end = at(s_.faceOffsets[span.end]);
    const auto slice = [&](std::vector<Index>& ids) {
      return ids.empty() ? std::span<Index>() : std::span(ids).subspan(first, end - first);
    };
    const std::span<Index> corners = slice(s_.cornerPoints), cornerUvs = slice(s_.cornerUvs);
    const std::vector<Index> used = pointPool.gather(corners), usedUvs = uvPool.gather(cornerUvs);
    std::vector<math::Vec3f> points(used.size());
    std::vector<mesh::Color4f> colors(s_.colors.empty() ? 0 : used.size());
    for (std::size_t i = 0; i < used.size(); ++i) {
      points[i] = s_.points[at(used[i])];
      isPointUsed_[at(used[i])] = 1;
    }
    for (std::size_t i = 0; i < colors.size(); ++i) colors[i] = s_.colors[at(used[i])];
    for (Index& id : corners) id = pointPool.newId(id);
    std::vector<Index> counts;
    for (FaceId f = span.first; f < span.end; ++f)
      counts.push_back(s_.faceOffsets[at(f) + 1] - s_.faceOffsets[f]);
    auto mesh = mesh::buildMesh(std::move(points), counts, viewIds<VertexId>(corners));
    if (!mesh) return failWith(std::move(mesh).error());
    if (!usedUvs.empty()) {
      mesh::UvSet& set = mesh->editUvSet(0);
      for (const UvId id : usedUvs) set.points.push_back(s_.uvs[at(id)]);
      set.cornerIds.reserve(cornerUvs.size());
      for (const UvId id : cornerUvs) set.cornerIds.push_back(uvPool.newId(id));
    }
    pointPool.release(used);
    uvPool.release(usedUvs);
    setColors(*mesh, std::move(colors));
    return finishObject(span, std::move(*mesh), slice(s_.cornerNormals));
  }

  static void setColors(mesh::Mesh& mesh, std::vector<mesh::Color4f> colors) {
    const auto isSet = [](const mesh::Color4f& c) { return c.r >= 0; };
    if (std::none_of(colors.begin(), colors.end(), isSet)) return;
    mesh::ColorSet set;
    set.name = "colorSet1";
    for (const VertexId v : mesh.topology().cornerVertices)
      set.cornerIds.push_back(isSet(colors[at(v)]) ? v : kNone);
    set.colors = std::move(colors);
    mesh.setCurrentColorSet(mesh.addColorSet(std::move(set)));
  }

  Result<void> finishObject(const ObjObjectSpan& span, mesh::Mesh mesh,
                            std::span<const Index> cornerNormals) {
    ObjObject object;
    ObjFaceParts& parts = parts_[scene_.objects.size()];
    object.name = std::string(span.name);
    object.groups = std::move(parts.groups);
    object.materials = std::move(parts.materials);
    object.smoothing = std::move(parts.smoothing);
    object.statesSmoothing = !object.smoothing.empty();
    std::vector<std::uint8_t> flags;
    if (!object.smoothing.empty())
      flags = smoothFlags(mesh, groupOfFaces(object.smoothing, mesh.faceCount()));
    const FileNormals normals{s_.normals, cornerNormals};
    object.hasNormals = normals.hasAny();
    if (object.hasNormals) hardenByNormals(mesh, normals, flags);
    if (std::find(flags.begin(), flags.end(), 0) != flags.end())
      mesh.setEdgeSmooth(std::move(flags));
    if (object.hasNormals && options_.lockNormals)
      lockNormals(mesh, normals, options_.normalTolerance);
    object.mesh = std::move(mesh);
    scene_.objects.push_back(std::move(object));
    return {};
  }

  ObjStatements s_;
  ObjReadOptions options_;
  std::vector<ObjFaceParts> parts_;  // one an object
  std::vector<std::uint8_t> isPointUsed_;
  ObjScene scene_;
};

}  // namespace

Result<ObjScene> parseObj(std::string_view text, const std::string& name,
                          const ObjReadOptions& options) {
  auto statements = parseObjStatements(text, name);
  if (!statements) return failWith(std::move(statements).error());
  if (isCancelled()) return cancelled();
  return SceneBuilder(std::move(*statements), options).build();
}

Result<ObjScene> readObj(const std::string& path, const ObjReadOptions& options) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  const LongWork work("Reading");
  return cancellable([&] { return parseObj(file->text(), path, options); });
}

}  // namespace host::io
