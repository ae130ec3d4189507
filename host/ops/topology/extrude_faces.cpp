#include "host/ops/topology/extrude_faces.h"

#include <numeric>
#include <utility>

#include "host/base/cancel_poll.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/extrude_region.h"
#include "host/ops/topology/side_faces.h"

namespace host::ops {
struct ExtrudePlan::Data {
  Data(const Mesh& input, std::span<const FaceId> faces, const ExtrudeFacesOptions& optionsIn)
      : options(optionsIn),
        regions(input, sortedIds(faces), optionsIn.keepFacesTogether, optionsIn.space) {}

  ExtrudeFacesOptions options;
  ExtrudeRegions regions;
  Mesh mesh;                        // new points are where their sources are
  std::vector<VertexId> levels;     // copies of the cap; then for each division below it, from the
                                    // base up, those on the rim
  std::vector<Index> rimCopies;     // copies on the rim, ascending
  std::vector<EdgeSides> softened;  // edges of the sides
  ExtrudeFacesResult result;
};

namespace {

/// Makes an extrusion's faces; the new vertices stay at their sources.
class FaceExtruder {
 public:
  FaceExtruder(const Mesh& mesh, const ExtrudeRegions& regions, int divisions)
      : mesh_(mesh), regions_(regions), divisions_(divisions), rebuilder_(mesh_) {
    rimPlaces_.assign(regions.copies().size(), kNone);
    for (std::size_t i = 0; i < regions.copies().size(); ++i)
      if (regions.copies()[i].isOnRim) {
        rimPlaces_[i] = static_cast<Index>(rimCopies_.size());
        rimCopies_.push_back(static_cast<Index>(i));
      }
  }

  mesh::Rebuilt run() {
    rebuilder_.keepAllVertices();
    const auto addCopy = [this](Index copy, bool lendsCrease) {
      const VertexId source = regions_.copies()[at(copy)].source;
      rebuilder_.addVertex(mesh_.points()[at(source)], lendsCrease ? source : kNone);
    };
    for (std::size_t i = 0; i < regions_.copies().size(); ++i) addCopy(static_cast<Index>(i), true);
    for (int division = 1; division < divisions_; ++division)
      for (const Index copy : rimCopies_) addCopy(copy, false);
    declareEdges();
    buildFaces();
    return rebuilder_.finish({.dropUnusedVertices = true});
  }
  [[nodiscard]] std::vector<Index> takeRimCopies() { return std::move(rimCopies_); }

 private:
  // The vertex over a copy's source at a level: 0 the base, `divisions` the cap.
  [[nodiscard]] VertexId levelVertex(Index copy, int level) const {
    if (level == 0) return regions_.copies()[at(copy)].source;
    const auto caps = static_cast<Index>(regions_.copies().size());
    if (level == divisions_) return mesh_.vertexCount() + copy;
    return mesh_.vertexCount() + caps + (level - 1) * static_cast<Index>(rimCopies_.size()) +
           rimPlaces_[at(copy)];
  }

  void declareEdges() {
    auto rim = regions_.rim().begin();
    for (std::size_t i = 0; i < regions_.faces().size(); ++i) {
      pollCancel(i);
      for (; rim != regions_.rim().end() && rim->face == regions_.faces()[i]; ++rim) {
        for (int level = 0; level < divisions_; ++level) {
          for (const Index copy : {rim->a, rim->b})
            rebuilder_.declareEdge(levelVertex(copy, level), levelVertex(copy, level + 1));
          rebuilder_.declareEdge(levelVertex(rim->a, level + 1), levelVertex(rim->b, level + 1));
        }
      }
      const auto loop = regions_.copiesOfFace(i);
      const auto edges = mesh_.faceEdges(regions_.faces()[i]);
      for (std::size_t k = 0; k < loop.size(); ++k) {
        const VertexId a = levelVertex(loop[k], divisions_),
                       b = levelVertex(loop[(k + 1) % loop.size()], divisions_);
        rebuilder_.declareEdge(a, b);
        rebuilder_.inheritEdge(a, b, edges[k]);
      }
    }
  }

  void buildFaces() {
    FaceId next = 0;
    for (std::size_t i = 0; i < regions_.faces().size(); ++i) {
      pollCancel(i);
      const FaceId f = regions_.faces()[i];
      rebuilder_.copyFaces(next, f);
      rebuilder_.beginFace(f);
      CornerId corner = mesh_.firstCorner(f);
      for (const Index copy : regions_.copiesOfFace(i))
        rebuilder_.addCorner(levelVertex(copy, divisions_), corner++);
      rebuilder_.endFace();
      next = f + 1;
    }
    rebuilder_.copyFaces(next, mesh_.faceCount());
    for (const FaceId f : regions_.wholePieces()) addBack(f);
    for (const auto& rim : regions_.rim())
      for (int level = 0; level < divisions_; ++level) {
        rebuilder_.beginFace(rim.face);
        rebuilder_.addCorner(levelVertex(rim.a, level), rim.cornerA);
        rebuilder_.addCorner(levelVertex(rim.b, level), rim.cornerB);
        rebuilder_.addCorner(levelVertex(rim.b, level + 1), rim.cornerB);
        rebuilder_.addCorner(levelVertex(rim.a, level + 1), rim.cornerA);
        rebuilder_.endFace();
      }
  }

  // The face stays behind, turned over: from its first corner backwards.
  void addBack(FaceId face) {
    const CornerId first = mesh_.firstCorner(face), end = mesh_.firstCorner(face + 1);
    rebuilder_.beginFace(face);
    rebuilder_.addCorner(mesh_.cornerVertex(first), first);
    for (CornerId c = end - 1; c > first; --c) rebuilder_.addCorner(mesh_.cornerVertex(c), c);
    rebuilder_.endFace();
  }

  Mesh mesh_;
  const ExtrudeRegions& regions_;
  int divisions_;
  mesh::MeshRebuilder rebuilder_;
  std::vector<Index> rimCopies_;
  std::vector<Index> rimPlaces_;  // a copy: where it is among those on the rim
};

// Backs look the other way, and so do their locked normals.
void turnLockedNormals(Mesh& mesh, std::span<const FaceId> backs) {
  if (backs.empty() || mesh.lockedNormals().locked.empty()) return;
  mesh::LockedNormals& normals = mesh.editLockedNormals();
  for (const FaceId f : backs)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      normals.normals[at(c)] = (math::Vec3(normals.normals[at(c)]) * -1).toFloat();
}

template <class Data>
void buildTopology(Data& data, const Mesh& mesh) {
  FaceExtruder extruder(mesh, data.regions, data.options.divisions);
  mesh::Rebuilt rebuilt = extruder.run();
  data.rimCopies = extruder.takeRimCopies();
  data.levels.assign(rebuilt.vertexMap.begin() + mesh.vertexCount(), rebuilt.vertexMap.end());
  ExtrudeFacesResult& result = data.result;
  rebuilt.vertexMap.resize(at(mesh.vertexCount()));
  result.maps.vertices = std::move(rebuilt.vertexMap);
  result.maps.edges = std::move(rebuilt.edgeMap);
  result.maps.faces.resize(at(mesh.faceCount()));
  std::iota(result.maps.faces.begin(), result.maps.faces.end(), 0);
  result.caps = data.regions.faces();
  const auto backs = static_cast<Index>(data.regions.wholePieces().size());
  for (FaceId f = mesh.faceCount(); f < rebuilt.mesh.faceCount(); ++f)
    (f < mesh.faceCount() + backs ? result.backs : result.sides).push_back(f);
  data.mesh = std::move(rebuilt.mesh);
  data.softened = detachSideFaces(data.mesh, result.sides);
  turnLockedNormals(data.mesh, result.backs);
}

// Places the new points of a mesh with the plan's topology and softens the sides.
template <class Data>
void placeNewPoints(const Data& data, Mesh& mesh, const ExtrudePlacement& placement,
                    const math::Matrix4& inverse) {
  if (data.levels.empty()) return;
  const auto points = mesh.editPoints();
  const bool isPlain = math::isIdentity(placement.space);
  const auto write = [&](std::size_t place, const math::Vec3& p) {
    const VertexId v = data.levels[place];
    if (v != kNone) points[at(v)] = (isPlain ? p : math::transformPoint(p, inverse)).toFloat();
  };
  data.regions.place(placement, 1, [&](Index copy, const math::Vec3& p) { write(at(copy), p); });
  std::size_t base = data.regions.copies().size();
  for (int division = 1; division < placement.divisions; ++division) {
    std::size_t rim = 0;
    data.regions.place(placement, static_cast<double>(division) / placement.divisions,
                       [&](Index copy, const math::Vec3& p) {
                         if (rim >= data.rimCopies.size() || data.rimCopies[rim] != copy) return;
                         write(base + rim++, p);
                       });
    base += data.rimCopies.size();
  }
  softenSides(mesh, data.softened, placement.smoothingAngle);
}

bool isSameSpace(const math::Matrix4& a, const math::Matrix4& b) {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      if (a[row][column] != b[row][column]) return false;
  return true;
}

}  // namespace

Result<ExtrudePlan> ExtrudePlan::make(const Mesh& mesh, std::span<const FaceId> faces,
                                      const ExtrudeFacesOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  if (const auto inverse = checkPlacement(options); !inverse) return failWith(inverse.error());
  const auto data = std::make_shared<Data>(mesh, faces, options);
  buildTopology(*data, mesh);
  ExtrudePlan plan;
  plan.data_ = data;
  return plan;
}

bool ExtrudePlan::hasTopologyOf(const ExtrudeFacesOptions& options) const {
  return data_ && options.divisions == data_->options.divisions &&
         options.keepFacesTogether == data_->options.keepFacesTogether &&
         isSameSpace(options.space, data_->options.space);
}

Result<Mesh> ExtrudePlan::place(const ExtrudeFacesOptions& options) const {
  const auto inverse = checkPlacement(options);
  if (!inverse) return failWith(inverse.error());
  if (!hasTopologyOf(options)) return fail("The extrusion's topology has changed; plan it again");
  Mesh mesh = data_->mesh;
  placeNewPoints(*data_, mesh, options, *inverse);
  return mesh;
}

const ExtrudeFacesResult& ExtrudePlan::result() const {
  return data_->result;
}

Result<ExtrudeFacesResult> extrudeFaces(Mesh& mesh, std::span<const FaceId> faces,
                                        const ExtrudeFacesOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  const auto inverse = checkPlacement(options);
  if (!inverse) return failWith(inverse.error());
  ExtrudePlan::Data data(mesh, faces, options);
  buildTopology(data, mesh);
  mesh = std::move(data.mesh);
  placeNewPoints(data, mesh, options, *inverse);
  return std::move(data.result);
}

}  // namespace host::ops
