#include "host/nodes/corner_override.h"

#include <algorithm>

#include "host/nodes/mesh_shape.h"

namespace host::nodes {

namespace {

using mesh::Mesh;

bool hasSameCounts(const Mesh& a, const Mesh& b) {
  return a.vertexCount() == b.vertexCount() && a.edgeCount() == b.edgeCount() &&
         a.faceCount() == b.faceCount() && a.cornerCount() == b.cornerCount();
}

/// The corner data of `edited` on the points and faces of `arriving`.
Mesh withCornerData(const Mesh& arriving, const Mesh& edited) {
  Mesh mesh = edited;
  if (!mesh.sharesTopologyWith(arriving) && mesh.topology() != arriving.topology())
    mesh.setTopology(arriving.topology());
  if (!mesh.sharesPointsWith(arriving))
    mesh.setPoints(std::vector<math::Vec3f>(arriving.points().begin(), arriving.points().end()));
  return mesh;
}

const std::string& currentUvSetName(const Mesh& mesh) {
  return mesh.uvSet(mesh.currentUvSet()).name;
}

void takeNewerUvSets(Mesh& mesh, const Mesh& arriving, const CornerOverride& override) {
  for (int set = 0; set < arriving.uvSetCount(); ++set) {
    const std::string& name = arriving.uvSet(set).name;
    const int before = override.arrived.findUvSet(name), own = mesh.findUvSet(name);
    if (before < 0 && own < 0) mesh.addUvSet(arriving.uvSet(set));
    if (before < 0 || own < 0) continue;
    const bool isAsBefore = arriving.sharesUvSetWith(set, override.arrived, before) ||
                            arriving.uvSet(set) == override.arrived.uvSet(before);
    if (!isAsBefore) mesh.setUvSet(own, arriving.uvSet(set));
  }
  const std::string& current = currentUvSetName(arriving);
  if (current != currentUvSetName(override.arrived) && mesh.findUvSet(current) >= 0)
    mesh.setCurrentUvSet(mesh.findUvSet(current));
}

void takeNewerColorSets(Mesh& mesh, const Mesh& arriving, const CornerOverride& override) {
  for (int set = 0; set < arriving.colorSetCount(); ++set) {
    const std::string& name = arriving.colorSet(set).name;
    const int before = override.arrived.findColorSet(name), own = mesh.findColorSet(name);
    if (before < 0 && own < 0) mesh.addColorSet(arriving.colorSet(set));
    if (before >= 0 && own >= 0 && arriving.colorSet(set) != override.arrived.colorSet(before))
      mesh.setColorSet(own, arriving.colorSet(set));
  }
}

void takeNewerArrays(Mesh& mesh, const Mesh& arriving, const Mesh& arrived) {
  if (arriving.lockedNormals() != arrived.lockedNormals())
    mesh.setLockedNormals(arriving.lockedNormals());
  if (arriving.creases() != arrived.creases()) mesh.setCreases(arriving.creases());
  if (!std::ranges::equal(arriving.edgeSmooth(), arrived.edgeSmooth()))
    mesh.setEdgeSmooth({arriving.edgeSmooth().begin(), arriving.edgeSmooth().end()});
  if (!std::ranges::equal(arriving.invisibleFaces(), arrived.invisibleFaces()))
    mesh.setInvisibleFaces({arriving.invisibleFaces().begin(), arriving.invisibleFaces().end()});
}

}  // namespace

Result<dg::DataPtr> makeOverride(dg::Node& shape, Mesh edited) {
  auto arrived = untweakedMesh(shape);
  if (!arrived) return failWith(arrived.error());
  return dg::DataPtr(std::make_shared<CornerOverride>(std::move(edited), *std::move(arrived)));
}

Mesh withOverride(const Mesh& arriving, const dg::Value& value) {
  const auto* override = dg::dataAs<CornerOverride>(value);
  if (!override || !hasSameCounts(arriving, override->edited)) return arriving;
  Mesh mesh = withCornerData(arriving, override->edited);
  if (!hasSameCounts(arriving, override->arrived)) return mesh;
  takeNewerUvSets(mesh, arriving, *override);
  takeNewerColorSets(mesh, arriving, *override);
  takeNewerArrays(mesh, arriving, override->arrived);
  return mesh;
}

}  // namespace host::nodes
