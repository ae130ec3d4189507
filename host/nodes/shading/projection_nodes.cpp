#include "host/nodes/shading/projection_nodes.h"

#include <cmath>
#include <numbers>
#include <string>
#include <tuple>
#include <unordered_set>

#include "host/mesh/normals.h"
#include "host/nodes/shading/shade_kind.h"
#include "host/ops/uv/project_uvs.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Vec3;

enum ProjectionType { kOff = 0, kPlanar, kSpherical, kCylindrical, kBall, kCubic, kTriplanar };

/// The image's colour by the balance that every texture has; where on it, the surface's UVs say.
void evaluateProjection(const ShadeInputs& in, std::span<double> out) {
  const Vec3 gain = in.color(0), offset = in.color(3);
  Vec3 color = in.color(10);
  if (in.values[8] != 0) color = Vec3{1, 1, 1} - color;
  for (int i = 0; i < 3; ++i) color[i] = color[i] * gain[i] + offset[i];
  for (int i = 0; i < 3; ++i) out[at(i)] = color[i];
  const double alpha = in.values[9] != 0 ? luminance(color) : 1;
  out[3] = alpha * in.values[6] + in.values[7];
}

void addCoordinates(TypeBuilder& type) {
  type.add(numbers("uvCoord", "uv", "float2", {single("uCoord", "u"), single("vCoord", "v")}));
  type.add(hidden(numbers("uvFilterSize", "uf", "float2",
                          {single("uvFilterSizeX", "ufx"), single("uvFilterSizeY", "ufy")})));
  for (const auto& [longName, shortName, child] : {std::tuple{"vertexCameraOne", "vc1", "c1"},
                                                   {"vertexCameraTwo", "vc2", "c2"},
                                                   {"vertexCameraThree", "vc3", "c3"}})
    type.add(hidden(triple(longName, shortName, AttributeType::Float, {}, child)));
  for (const auto& [longName, number] :
       {std::pair{"vertexUvOne", "1"}, {"vertexUvTwo", "2"}, {"vertexUvThree", "3"}})
    type.add(
        hidden(numbers(longName, std::string("vt") + number, "float2",
                       {single(std::string(longName) + "U", std::string("t") + number + "u"),
                        single(std::string(longName) + "V", std::string("t") + number + "v")})));
  type.add(hidden(triple("normalCamera", "n", AttributeType::Float)));
  type.add(hidden(triple("refPointObj", "rpo", AttributeType::Float, {}, "ro")));
  type.add(hidden(triple("refPointCamera", "rpc", AttributeType::Float, {}, "rc")));
}

/// As the base of textures in space has it.
void addBalance(TypeBuilder& type) {
  type.add(keyable(softLimited(single("filter", "f", 1), 0, 1)));
  type.add(keyable(softLimited(single("filterOffset", "fo"), 0, 1)));
  type.add(boolean("invert", "i"));
  type.add(boolean("alphaIsLuminance", "ail"));
  type.add(boolean("local", "l"));
  type.add(boolean("wrap", "w", true));
  type.add(keyable(single("blend", "b")));
  type.add(keyable(color("colorGain", "cg", {1, 1, 1})));
  type.add(keyable(color("colorOffset", "co")));
  type.add(keyable(single("alphaGain", "ag", 1)));
  type.add(keyable(single("alphaOffset", "ao")));
  type.add(keyable(color("defaultColor", "dc", {0.5, 0.5, 0.5})));
  type.add(matrix("placementMatrix", "pm"));
}

Matrix4 matrixOf(Node& node, const char* attribute) {
  const auto value = node.graph().get(node.plug(attribute));
  const auto* data = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
  return data ? data->value : Matrix4();
}

double numberOf(Node& node, const char* attribute) {
  const auto value = node.graph().get(node.plug(attribute));
  if (!value) return 0;
  const auto* real = std::get_if<double>(&*value);
  const auto* whole = std::get_if<std::int64_t>(&*value);
  return real ? *real : whole ? static_cast<double>(*whole) : 0;
}

/// Rows of the plane that faces a direction of the placement: u, v and towards the viewer.
Matrix4 planeFacing(int axis, double side) {
  static constexpr double kRows[3][2][3] = {
      {{0, 0, -1}, {0, 1, 0}}, {{1, 0, 0}, {0, 0, -1}}, {{1, 0, 0}, {0, 1, 0}}};
  Vec3 u, v, towards;
  for (int i = 0; i < 3; ++i) {
    u[i] = kRows[axis][0][i];
    v[i] = kRows[axis][1][i];
  }
  towards[axis] = side;
  // Seen from behind, u runs the other way.
  if (axis == 1)
    v = v * side;
  else
    u = u * side;
  Matrix4 plane;
  for (int i = 0; i < 3; ++i) {
    plane.m[i][0] = u[i];
    plane.m[i][1] = v[i];
    plane.m[i][2] = towards[i];
  }
  return plane;
}

/// Each face by the side of the box that it looks to most.
void projectCubic(mesh::Mesh& mesh, std::span<const FaceId> faces, const Matrix4& toPlacement,
                  ops::UvProjection projection) {
  std::vector<FaceId> sides[3][2];
  for (const FaceId face : faces) {
    const Vec3 normal = math::transformNormal(mesh::faceNormal(mesh, face), toPlacement);
    int axis = 0;
    for (int i = 1; i < 3; ++i)
      if (std::abs(normal[i]) > std::abs(normal[axis])) axis = i;
    sides[axis][normal[axis] < 0 ? 0 : 1].push_back(face);
  }
  for (int axis = 0; axis < 3; ++axis)
    for (int side = 0; side < 2; ++side) {
      if (sides[axis][side].empty()) continue;
      projection.toProjection = toPlacement * planeFacing(axis, side == 0 ? -1 : 1);
      (void)ops::projectUvs(mesh, mesh.currentUvSet(), sides[axis][side], projection);
    }
}

}  // namespace

void registerProjection(dg::TypeRegistry& types) {
  TypeBuilder place(types, "place3dTexture", "transform", typeCode("RPL3"));
  place.type().classification = "utility/general";
  place.finish();

  TypeBuilder type(types, "projection", {}, typeCode("PRJN"));
  type.type().classification = "texture/other";
  addCoordinates(type);
  addBalance(type);
  type.add(keyable(color("image", "im")));
  type.add(keyable(angle("uAngle", "ua", std::numbers::pi)));
  type.add(keyable(angle("vAngle", "va", std::numbers::pi / 2)));
  type.add(choice("projType", "t",
                  {"Off", "Planar", "Spherical", "Cylindrical", "Ball", "Cubic", "TriPlanar",
                   "Concentric", "Perspective"},
                  kPlanar));
  type.add(message("linkedCamera", "lc"));
  type.add(
      choice("fitType", "ft", {"None", "Match Camera Film Gate", "Match Camera Resolution"}, 1));
  type.add(choice("fitFill", "ff", {"Fill", "Horizontal", "Vertical"}));
  type.add(triple("ripples", "r", AttributeType::Float, {1, 1, 1}));
  type.add(
      numbers("depth", "d", "float2", {single("depthMin", "dmn"), single("depthMax", "dmx", 10)}));
  type.add(single("amplitudeX", "ax"));
  type.add(single("amplitudeY", "ay"));
  type.add(single("ratio", "ra", 0.3));
  type.add(single("xPixelAngle", "xpa", 0.002053));
  type.add(boolean("passTransparency", "pst"));
  type.add(output(color("outColor", "oc")));
  type.add(output(single("outAlpha", "oa")));
  evaluateBy(type, {.inputs = {"colorGain", "colorOffset", "alphaGain", "alphaOffset", "invert",
                               "alphaIsLuminance", "image"},
                    .arrays = {},
                    .outputs = {"outColor", "outAlpha"},
                    .evaluate = evaluateProjection});
  type.finish();
}

std::optional<TextureProjection> textureProjectionOf(Node& node) {
  const auto type = static_cast<int>(numberOf(node, "projType"));
  if (type == kOff) return std::nullopt;
  TextureProjection projection;
  if (type == kSpherical) projection.shape = TextureProjection::Shape::Spherical;
  if (type == kCylindrical) projection.shape = TextureProjection::Shape::Cylindrical;
  if (type == kCubic || type == kTriplanar) projection.shape = TextureProjection::Shape::Cubic;
  projection.toPlacement = matrixOf(node, "placementMatrix");
  projection.uAngle = numberOf(node, "uAngle");
  projection.vAngle = numberOf(node, "vAngle");
  return projection;
}

Node* projectionBehind(const Plug& color) {
  dg::Graph& graph = color.node()->graph();
  std::vector<Node*> open;
  std::unordered_set<const Node*> seen;
  const auto add = [&](const Plug& plug) {
    if (const Plug source = graph.source(plug); source && seen.insert(source.node()).second)
      open.push_back(source.node());
  };
  add(color);
  if (color.isCompound())
    for (int i = 0; i < 3; ++i) add(color.child(i));
  for (std::size_t i = 0; i < open.size(); ++i) {
    if (open[i]->type().isA("projection")) return open[i];
    if (!shadeKindOf(open[i]->type())) continue;
    for (const dg::Graph::Connection& each : graph.incoming(*open[i]))
      if (seen.insert(each.source.node()).second) open.push_back(each.source.node());
  }
  return nullptr;
}

void projectTexture(mesh::Mesh& mesh, std::span<const FaceId> faces, const Matrix4& world,
                    const TextureProjection& from) {
  using Shape = TextureProjection::Shape;
  const Matrix4 toPlacement = world * from.toPlacement;
  ops::UvProjection projection;
  projection.width = projection.height = 2;
  if (from.shape == Shape::Cubic) return projectCubic(mesh, faces, toPlacement, projection);
  projection.toProjection = toPlacement;
  if (from.shape != Shape::Planar) {
    projection.width = from.uAngle;
    projection.correctsSeam = true;
  }
  if (from.shape == Shape::Spherical) {
    projection.shape = ops::UvProjectionShape::Spherical;
    projection.height = from.vAngle;
  } else if (from.shape == Shape::Cylindrical) {
    projection.shape = ops::UvProjectionShape::Cylindrical;
  }
  // A projection of no size lays nothing on: the surface keeps its UVs.
  (void)ops::projectUvs(mesh, mesh.currentUvSet(), faces, projection);
}

}  // namespace host::nodes
