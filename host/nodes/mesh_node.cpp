#include "host/nodes/mesh_node.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "host/nodes/corner_override.h"
#include "host/nodes/dag_node.h"
#include "host/nodes/mesh_access.h"
#include "host/nodes/vertex_offsets.h"
#include "host/scene/dag_paths.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using mesh::Mesh;
using scene::MeshData;

struct MeshAttributes {
  const Attribute *inMesh, *outMesh, *worldMesh, *tweaks, *override, *worldMatrix;
};

Result<Computed> computeOutMesh(const MeshAttributes& a, Node& node, DataBlock& block) {
  auto arriving = block.input(Plug(&node, a.inMesh));
  if (!arriving) return failWith(arriving.error());
  const auto* data = dg::dataAs<MeshData>(*arriving);
  if (!data) {
    block.output(a.outMesh, {});
    return Computed::Done;
  }
  const auto override = block.input(Plug(&node, a.override));
  if (!override) return failWith(override.error());
  const bool isEdited = dg::dataAs<CornerOverride>(*override) != nullptr;
  Mesh mesh = withOffsets(isEdited ? withOverride(data->mesh, *override) : data->mesh,
                          Plug(&node, a.tweaks));
  const bool isAsItCame = !isEdited && mesh.sharesPointsWith(data->mesh);
  block.output(a.outMesh, isAsItCame ? *arriving
                                     : dg::Value(dg::DataPtr(std::make_shared<MeshData>(
                                           std::move(mesh), data->groups))));
  return Computed::Done;
}

Mesh transformed(Mesh mesh, const math::Matrix4& matrix) {
  for (math::Vec3f& point : mesh.editPoints())
    point = math::transformPoint(math::Vec3(point), matrix).toFloat();
  if (!mesh.lockedNormals().normals.empty())
    for (math::Vec3f& normal : mesh.editLockedNormals().normals)
      normal = math::normalized(math::transformNormal(math::Vec3(normal), matrix)).toFloat();
  return mesh;
}

Result<Computed> computeWorldMesh(const MeshAttributes& a, Node& node, Index instance,
                                  DataBlock& block) {
  auto object = block.input(Plug(&node, a.outMesh));
  if (!object) return failWith(object.error());
  const auto matrix = block.input(Plug(&node, a.worldMatrix).element(instance));
  if (!matrix) return failWith(matrix.error());
  const auto* data = dg::dataAs<MeshData>(*object);
  const auto* world = dg::dataAs<dg::MatrixData>(*matrix);
  const Plug out = Plug(&node, a.worldMesh).element(instance);
  if (!data || !world || math::isIdentity(world->value))
    block.output(out, *object);
  else
    block.output(out, dg::DataPtr(std::make_shared<MeshData>(transformed(data->mesh, world->value),
                                                             data->groups)));
  return Computed::Done;
}

void addDisplayAttributes(TypeBuilder& builder) {
  builder.add(boolean("visibleInReflections", "vir"));
  builder.add(boolean("visibleInRefractions", "vif"));
  builder.add(boolean("castsShadows", "csh", true));
  builder.add(boolean("receiveShadows", "rcsh", true));
  builder.add(boolean("motionBlur", "mb", true));
  builder.add(boolean("primaryVisibility", "vis", true));
  builder.add(boolean("smoothShading", "smo", true));
  builder.add(boolean("doubleSided", "ds", true));
  builder.add(boolean("opposite", "op"));
  builder.add(boolean("displayColors", "dcol"));
  builder.add(text("displayColorChannel", "dcc"));
  builder.add(boolean("displayVertices", "dv"));
  builder.add(boolean("displayBorders", "db"));
  builder.add(choice("displayEdges", "de", {"standard", "soft/hard", "hard", "hardColored"}));
  builder.add(integer("displayFacesWithGroupId", "dfgi", -2));
  builder.add(boolean("displayCenter", "dc"));
  builder.add(boolean("displayTriangles", "dt"));
  builder.add(boolean("displayUVs", "duv"));
  builder.add(integer("displayItemNumbers", "din"));  // bits: vertices, edges, faces, UVs
  builder.add(boolean("displayNonPlanar", "dnp"));
  builder.add(boolean("displayNormal", "dn"));
  builder.add(boolean("displayMapBorders", "dmb"));
  builder.add(boolean("displayInvisibleFaces", "difs"));
  builder.add(
      choice("materialBlend", "matb",
             {"overwrite", "add", "subtract", "multiply", "divide", "average", "modulate2x"}));
  builder.add(choice("normalType", "ndt", {"facet", "vertex", "vertexFace"}));
  builder.add(choice("vertexNormalMethod", "vnm",
                     {"unweighted", "angle-weighted", "area-weighted", "angle and area-weighted"},
                     3));
  builder.add(single("uvSize", "usz", 4));
  builder.add(single("normalSize", "ns", 0.4));
  builder.add(single("vertexSize", "vs", 3));
  builder.add(single("borderWidth", "bw", 2));
  builder.add(choice("backfaceCulling", "bck", {"off", "wire", "hard", "full"}));
  builder.add(boolean("vertexBackfaceCulling", "vbc", true));
}

void addSmoothAttributes(TypeBuilder& builder) {
  builder.add(limited(shortInteger("displaySmoothMesh", "dsm"), 0, 2));
  builder.add(limited(shortInteger("smoothLevel", "lev", 2), 0, 4));
  builder.add(boolean("useSmoothPreviewForRender", "uspr", true));
  builder.add(limited(shortInteger("renderSmoothLevel", "rlev", 2), 0, 4));
  builder.add(limited(single("continuity", "co", 1), 0, 1));
  builder.add(boolean("smoothUVs", "suv", true));
  builder.add(boolean("keepBorder", "kb"));
  builder.add(boolean("keepMapBorders", "kmb", true));
  builder.add(boolean("keepHardEdge", "khe"));
  builder.add(boolean("propagateEdgeHardness", "peh"));
  builder.add(boolean("smoothOffset", "so"));
  builder.add(boolean("displaySubdComps", "dsc"));
  builder.add(choice("quadSplit", "qsp",
                     {"automatic", "left", "right", "best shape", "best shape, parallel"}, 2));
  builder.add(boolean("useMaxEdgeLength", "uxe"));
}

}  // namespace

void registerMesh(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "mesh", "surfaceShape", typeCode("DMSH"));
  MeshAttributes a{};
  a.inMesh = builder.add(notStored(dg::makeTyped("inMesh", "i", "mesh")));
  a.outMesh = builder.add(output(dg::makeTyped("outMesh", "o", "mesh")));
  AttributePtr worldMesh = array(output(dg::makeTyped("worldMesh", "w", "mesh")));
  worldMesh->worldSpace = true;
  a.worldMesh = builder.add(std::move(worldMesh));
  builder.add(hidden(notStored(dg::makeTyped("cachedInMesh", "ci", "mesh"))));
  a.override = builder.add(hidden(dg::makeTyped(kMeshOverrideAttribute, "cdov", "mesh")));
  // Lengths, with children in double precision: an offset then takes a float point to any other
  // float point exactly.
  a.tweaks = builder.add(
      array(numbers("pnts", "pt", "float3",
                    {distance("pntx", "px"), distance("pnty", "py"), distance("pntz", "pz")})));
  auto access = std::make_shared<MeshAccess>();
  access->addTo(builder, a.inMesh);
  builder.add(
      numbers("uvPivot", "pv", "double2", {real("uvPivotX", "pvx"), real("uvPivotY", "pvy")}));
  builder.add(array(dg::makeTyped("pinData", "pd", "dataPolyComponent")));
  // Comes from the element of a tweak node that stands for the shape; the element itself is told.
  AttributePtr tweakLocation = dg::makeAttribute("tweakLocation", "twl", AttributeType::Generic);
  tweakLocation->acceptedTypes = {"float3", "double3"};
  builder.add(notStored(std::move(tweakLocation)));
  builder.add(array(compound("componentTags", "gtag",
                             {text("componentTagName", "gtagnm"),
                              dg::makeTyped("componentTagContents", "gtagcmp", "componentList")})));
  addDisplayAttributes(builder);
  addSmoothAttributes(builder);
  a.worldMatrix = builder["worldMatrix"];

  builder.affects({a.inMesh, a.tweaks, a.override}, {a.outMesh});
  for (const Attribute* part : access->written()) builder.affects({part}, {a.outMesh});
  builder.affects({a.outMesh, a.worldMatrix, builder["parentMatrix"]}, {a.worldMesh});
  builder.type().compute = [a](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() == a.outMesh) return computeOutMesh(a, node, block);
    if (plug.attribute() != a.worldMesh) return Computed::Unhandled;
    if (plug.isElement()) return computeWorldMesh(a, node, plug.logicalIndex(), block);
    const auto instances = static_cast<Index>(std::min(scene::pathCount(node), scene::kMostPaths));
    for (Index i = 0; i < instances; ++i) {
      auto done = computeWorldMesh(a, node, i, block);
      if (!done) return done;
    }
    return Computed::Done;
  };
  builder.type().getInternal = [access](const Node& node, const Plug& plug, dg::Value& value) {
    return access->read(node, plug, value);
  };
  builder.type().setInternal = [access](Node& node, const Plug& plug, const dg::Value& value) {
    return access->write(node, plug, value);
  };
  builder.finish();
}

}  // namespace host::nodes
