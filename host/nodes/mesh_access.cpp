#include "host/nodes/mesh_access.h"

#include <memory>

namespace host::nodes {

namespace {

using mesh::Mesh;

const Mesh* storedMesh(const Node& node, const Attribute* inMesh, dg::Value& keepAlive) {
  auto value = node.graph().get(Plug(const_cast<Node*>(&node), inMesh));
  if (!value) return nullptr;
  keepAlive = *std::move(value);
  const auto* data = dg::dataAs<scene::MeshData>(keepAlive);
  return data ? &data->mesh : nullptr;
}

bool isBelow(Index index, std::size_t count) {
  return index >= 0 && at(index) < count;
}

/// Suspends the records of a graph: for what changes along with an edit that is recorded.
class Unrecorded {
 public:
  explicit Unrecorded(dg::Graph& graph) : graph_(graph), recorder_(graph.recorder()) {
    graph_.setRecorder(nullptr);
  }
  ~Unrecorded() { graph_.setRecorder(recorder_); }
  Unrecorded(const Unrecorded&) = delete;
  Unrecorded& operator=(const Unrecorded&) = delete;

 private:
  dg::Graph& graph_;
  dg::ChangeRecorder* recorder_;
};

double component(const math::Vec3f& v, int axis) {
  return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

}  // namespace

void MeshAccess::addTo(TypeBuilder& builder, const Attribute* inMesh) {
  inMesh_ = inMesh;
  vertices_ = builder.add(
      internal(array(numbers("vrts", "vt", "float3",
                             {single("vrtx", "vx"), single("vrty", "vy"), single("vrtz", "vz")}))));
  edges_ = builder.add(internal(
      array(numbers("edge", "ed", "long3",
                    {integer("edg1", "e1"), integer("edg2", "e2"), integer("edgh", "eh", 1)}))));
  builder.add(hidden(array(dg::makeTyped("face", "fc", "polyFaces"))));
  normals_ = builder.add(internal(
      array(numbers("normals", "n", "float3",
                    {single("normalx", "nx"), single("normaly", "ny"), single("normalz", "nz")}))));
  const Attribute* sets = builder.add(array(compound(
      "uvSet", "uvst",
      {internal(text("uvSetName", "uvsn")),
       internal(array(numbers("uvSetPoints", "uvsp", "float2",
                              {single("uvSetPointsU", "uvpu"), single("uvSetPointsV", "uvpv")}))),
       dg::makeTyped("uvSetTweakLocation", "uvtw", "Int32Array")})));
  uvSetName_ = sets->children[0].get();
  uvSetPoints_ = sets->children[1].get();
  currentUvSet_ = builder.add(internal(text("currentUVSet", "cuvs")));
  const Attribute* colors = builder.add(array(compound(
      "colorSet", "clst",
      {internal(text("colorName", "clsn")), boolean("clamped", "clam"),
       choice("representation", "rprt", {"Unused", "A", "Unused", "RGB", "RGBA"}, 4),
       array(numbers(
           "colorSetPoints", "clsp", "float4",
           {single("colorSetPointsR", "clpr", -1), single("colorSetPointsG", "clpg", -1),
            single("colorSetPointsB", "clpb", -1), single("colorSetPointsA", "clpa", -1)}))})));
  colorSetName_ = colors->children[0].get();
  currentColorSet_ = builder.add(internal(text("currentColorSet", "ccls")));
  written_ = {vertices_, uvSetName_, uvSetPoints_, currentUvSet_};
}

bool MeshAccess::read(const Node& node, const Plug& plug, dg::Value& value) const {
  const Attribute* leaf = plug.attribute();
  const Attribute* owner = leaf->parent ? leaf->parent : leaf;
  // Matrices are read while the mesh is computed: the mesh is asked for its own parts alone.
  const bool isPart = owner == vertices_ || owner == edges_ || owner == normals_ ||
                      owner == uvSetPoints_ || leaf == uvSetName_ || leaf == currentUvSet_ ||
                      leaf == colorSetName_ || leaf == currentColorSet_;
  if (!leaf->internalStorage || !isPart) return false;
  dg::Value keepAlive;
  const Mesh* mesh = storedMesh(node, inMesh_, keepAlive);
  if (!mesh) return false;
  const Index index = plug.logicalIndex();
  const int part = leaf->childIndex;
  if (owner == vertices_) {
    if (!isBelow(index, mesh->points().size())) return false;
    value = component(mesh->points()[at(index)], part);
  } else if (owner == edges_) {
    if (index < 0 || index >= mesh->edgeCount()) return false;
    const mesh::EdgeVertices edge = mesh->edge(index);
    value = part == 0   ? std::int64_t{edge.a}
            : part == 1 ? std::int64_t{edge.b}
                        : std::int64_t{mesh->isEdgeSmooth(index)};
  } else if (owner == normals_) {
    if (index < 0 || index >= mesh->cornerCount()) return false;
    value = component(mesh->cornerNormals()[at(index)], part);
  } else if (leaf == uvSetName_) {
    if (index < 0 || index >= mesh->uvSetCount()) return false;
    value = mesh->uvSet(index).name;
  } else if (owner == uvSetPoints_) {
    const Index set = plug.index(0);
    if (set < 0 || set >= mesh->uvSetCount() || !isBelow(index, mesh->uvSet(set).points.size()))
      return false;
    const math::Vec2f uv = mesh->uvSet(set).points[at(index)];
    value = double{part == 0 ? uv.u : uv.v};
  } else if (leaf == currentUvSet_) {
    value = mesh->uvSet(mesh->currentUvSet()).name;
  } else if (leaf == colorSetName_) {
    if (index < 0 || index >= mesh->colorSetCount()) return false;
    value = mesh->colorSet(index).name;
  } else if (leaf == currentColorSet_) {
    value =
        mesh->currentColorSet() < 0 ? std::string() : mesh->colorSet(mesh->currentColorSet()).name;
  } else {
    return false;
  }
  return true;
}

Result<bool> MeshAccess::writeVertex(Mesh& mesh, const Plug& plug, double value) const {
  if (!isBelow(plug.logicalIndex(), mesh.points().size()))
    return fail(ErrorKind::BadArgument, "'{}': the mesh has {} vertices", plug.name(),
                mesh.vertexCount());
  math::Vec3f& point = mesh.editPoints()[at(plug.logicalIndex())];
  const int axis = plug.attribute()->childIndex;
  (axis == 0 ? point.x : axis == 1 ? point.y : point.z) = static_cast<float>(value);
  return true;
}

Result<bool> MeshAccess::writeUv(Mesh& mesh, const Plug& plug, const dg::Value& value) const {
  const Index set = plug.index(0);
  if (set < 0 || set >= mesh.uvSetCount())
    return fail(ErrorKind::BadArgument, "'{}': the mesh has {} UV sets", plug.name(),
                mesh.uvSetCount());
  mesh::UvSet& uvs = mesh.editUvSet(set);
  if (plug.attribute() == uvSetName_) {
    uvs.name = std::get<std::string>(value);
    return true;
  }
  if (!isBelow(plug.logicalIndex(), uvs.points.size()))
    return fail(ErrorKind::BadArgument, "'{}': the UV set has {} UVs", plug.name(),
                uvs.points.size());
  math::Vec2f& uv = uvs.points[at(plug.logicalIndex())];
  (plug.attribute()->childIndex == 0 ? uv.u : uv.v) = static_cast<float>(std::get<double>(value));
  return true;
}

Result<bool> MeshAccess::write(Node& node, const Plug& plug, const dg::Value& value) const {
  const Attribute* leaf = plug.attribute();
  const bool isVertex = leaf->parent == vertices_;
  const bool isUv = leaf == uvSetName_ || leaf->parent == uvSetPoints_;
  if (!isVertex && !isUv && leaf != currentUvSet_) return false;
  const Plug stored(&node, inMesh_);
  if (node.graph().isDriven(stored))
    return fail("'{}' comes from the construction history of '{}'", plug.name(), node.name());
  dg::Value keepAlive;
  const Mesh* present = storedMesh(node, inMesh_, keepAlive);
  Mesh changed = present ? *present : Mesh();
  if (leaf == currentUvSet_) {
    const int set = changed.findUvSet(std::get<std::string>(value));
    if (set < 0)
      return fail(ErrorKind::NotFound, "'{}' has no UV set '{}'", node.name(),
                  std::get<std::string>(value));
    changed.setCurrentUvSet(set);
  } else {
    auto written = isVertex ? writeVertex(changed, plug, std::get<double>(value))
                            : writeUv(changed, plug, value);
    if (!written) return written;
  }
  const Unrecorded unrecorded(node.graph());
  HOST_TRY(
      node.graph().set(stored, dg::DataPtr(std::make_shared<scene::MeshData>(std::move(changed)))));
  return true;
}

}  // namespace host::nodes
