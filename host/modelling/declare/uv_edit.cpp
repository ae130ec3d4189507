#include "host/modelling/declare/uv_edit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/math/box.h"
#include "host/math/euler.h"
#include "host/modelling/declare/history_command.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

using math::Matrix4;
using math::Vec3;
using ops::UvProjectionShape;

constexpr double kDegree = std::numbers::pi / 180;

/// The turn that lets a plane's z look along an axis, right way up.
std::optional<Vec3> turnAlong(std::string_view axis) {
  constexpr double kQuarter = std::numbers::pi / 2;
  if (axis == "x") return Vec3(0, kQuarter, 0);
  if (axis == "y") return Vec3(-kQuarter, 0, 0);
  if (axis == "z") return Vec3(0, 0, 0);
  return std::nullopt;
}

/// The camera through which views look unless they are told otherwise.
Result<scene::DagPath> viewCamera(Context& context) {
  if (const auto found = context.document.resolve("persp"))
    for (const scene::SelectionItem& item : found->items())
      if (item.isDag()) return item.path.transform();
  return fail("there is no camera to project through: 'persp' is gone");
}

/// The turn that lays the axis of a cylinder or sphere, which is y, along an axis.
std::optional<Vec3> turnOfAxis(std::string_view axis) {
  constexpr double kQuarter = std::numbers::pi / 2;
  if (axis == "x") return Vec3(0, 0, -kQuarter);
  if (axis == "y") return Vec3(0, 0, 0);
  if (axis == "z") return Vec3(kQuarter, 0, 0);
  return std::nullopt;
}

/// A plane looks along the direction; round projections have their axis along it, or upright in
/// what the camera or the best plane sees.
Result<void> turnToDirection(Context& context, const ParsedArgs& args, Node& node,
                             const MeshItem& item, const std::vector<Index>& faces,
                             const Matrix4& space, UvProjectionShape shape) {
  std::string direction = args.text("mapDirection");
  std::transform(direction.begin(), direction.end(), direction.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  dg::Graph& graph = context.document.graph();
  if (direction == "b" || direction == "bestplane") {
    mesh::Mesh seen = item.mesh;
    std::vector<math::Vec3f> points;
    for (VertexId v = 0; v < seen.vertexCount(); ++v)
      points.push_back(math::transformPoint(seen.point(v), space).toFloat());
    seen.setPoints(std::move(points));
    return graph.setVec3(node.plug("rotate"),
                         math::matrixToEuler(ops::bestPlaneAxes(seen, viewIds<FaceId>(faces))));
  }
  if (direction == "c" || direction == "camera") {
    const auto camera = viewCamera(context);
    if (!camera) return failWith(camera.error());
    Matrix4 axes = camera->inclusiveMatrix();
    for (int row = 0; row < 3; ++row) {
      const Vec3 axis = math::normalized(Vec3(axes[row][0], axes[row][1], axes[row][2]));
      for (int column = 0; column < 3; ++column) axes[row][column] = axis[column];
      axes[3][row] = 0;
    }
    return graph.setVec3(node.plug("rotate"), math::matrixToEuler(axes));
  }
  if (direction == "p" || direction == "perspective")
    return fail(
        "-mapDirection p needs a projection that narrows with distance, and projections here are "
        "parallel: use c, or move the camera far off");
  const auto turn =
      shape == UvProjectionShape::Planar ? turnAlong(direction) : turnOfAxis(direction);
  if (!turn)
    return fail("-mapDirection is x, y, z, b (best plane) or c (camera), not '{}'", direction);
  return graph.setVec3(node.plug("rotate"), *turn);
}

bool hasAny(const ParsedArgs& args, std::initializer_list<const char*> flags) {
  return std::any_of(flags.begin(), flags.end(), [&](const char* flag) { return args.has(flag); });
}

Result<void> setNumber(Context& context, const Plug& plug, double value) {
  return context.document.graph().set(plug, dg::Value(value));
}

}  // namespace

Result<int> uvSetOf(const HistoryContext& context) {
  return ops::findUvSet(context.mesh, context.text("uvSetName"));
}

Result<int> uvSetToFill(HistoryContext& context) {
  const std::string name = context.text("uvSetName");
  if (!name.empty() && context.mesh.findUvSet(name) < 0)
    context.mesh.setCurrentUvSet(context.mesh.addUvSet({name, {}, {}}));
  return ops::findUvSet(context.mesh, name);
}

Result<int> uvSetToChange(HistoryContext& context) {
  const std::string name = context.text("uvSetName");
  if (!name.empty() && context.mesh.findUvSet(name) < 0) {
    mesh::UvSet copy = context.mesh.uvSet(context.mesh.currentUvSet());
    copy.name = name;
    context.mesh.setCurrentUvSet(context.mesh.addUvSet(std::move(copy)));
  }
  return ops::findUvSet(context.mesh, name);
}

void addUvSetName(Declaration& declaration) {
  declaration.parameter(text("uvSetName", "uvs"), "the UV set; empty: the current one");
}

void ignoreWorldSpace(Declaration& declaration) {
  declaration.parameter(boolean("worldSpace", "ws"), "of commands that measure in the scene")
      .recordedOnly();
}

void addNewMapFlags(Declaration& declaration) {
  ExtraFlag create{"cm", "createNewMap", {ArgType::Bool}, kCreate};
  create.meaning = "fills a new UV set, of the name that -uvSetName says";
  ExtraFlag before{"ibd", kBeforeDeformersFlag, {ArgType::Bool}, kCreate};
  before.meaning = "on works on the mesh before deformers move it, off on the moved one";
  declaration.extraFlag(create).extraFlag(before);
}

Result<void> chooseUvSet(Context& context, const ParsedArgs& args, Node& node,
                         const MeshItem& item) {
  const std::string name = args.text("uvSetName");
  if (!args.boolean("createNewMap")) {
    if (name.empty() || item.mesh.findUvSet(name) >= 0) return {};
    return fail(ErrorKind::NotFound, "'{}' has no UV set '{}'", item.path.transform().partialName(),
                name);
  }
  const std::string wanted = name.empty() ? "uvSet" : name;
  std::string free = wanted;
  for (int number = 1; item.mesh.findUvSet(free) >= 0; ++number)
    free = wanted + std::to_string(number);
  return context.document.graph().set(node.plug("uvSetName"), dg::Value(free));
}

ExtraFlag keepImageRatio(std::string meaning) {
  ExtraFlag flag{"kir", "keepImageRatio", {ArgType::Bool}, kCreate};
  flag.hasOptionalArgs = true;  // alone it means on
  flag.meaning = std::move(meaning);
  return flag;
}

void addProjection(Declaration& declaration, ProjectionSize size) {
  declaration
      .parameter(triple("projectionCenter", "pc", AttributeType::Distance),
                 "where the projection stands; at first the middle of the faces")
      .parameter(numbers("imageCenter", "ic", "double2",
                         {real("imageCenterX", "icx", 0.5), real("imageCenterY", "icy", 0.5)}),
                 "where its middle comes to lie in the map")
      .parameter(triple("rotate", "ro", AttributeType::Angle, {}, "r"), "how it is turned")
      .flag("ro", "rotate", "r")
      .parameter(numbers("projectionScale", "ps", "double2", {size.u, size.v}),
                 "what fills the image, across and up; at first the size of the faces")
      .parameter(numbers("imageScale", "is", "double2",
                         {real("imageScaleU", "isu", 1), real("imageScaleV", "isv", 1)}),
                 "size of the image in the map")
      .parameter(angle("rotationAngle", "ra"), "turn of the image in the map");
  for (const auto& [small, large] :
       {std::pair{"psu", "projectionScaleU"}, std::pair{"psv", "projectionScaleV"}}) {
    ExtraFlag flag{small, large, {ArgType::Double}, kCreate};
    flag.meaning = "one of the numbers of -projectionScale";
    declaration.extraFlag(flag);
  }
  ExtraFlag fit{"sf", "smartFit", {ArgType::Bool}, kCreate};
  fit.meaning = "off leaves centre and size at what the flags say";
  ExtraFlag direction{"md", "mapDirection", {ArgType::String}, kCreate};
  direction.meaning = "x, y, z, b (the faces' best plane) or c (as the camera sees them)";
  ExtraFlag instance{"pi", "perInstance", {ArgType::Bool}, kCreate};
  instance.meaning = "on is refused: instances share their UV sets";
  declaration.extraFlag(fit).extraFlag(direction).extraFlag(instance);
  addNewMapFlags(declaration);
}

ops::UvProjection projectionOf(const HistoryContext& context, UvProjectionShape shape) {
  ops::UvProjection projection;
  projection.shape = shape;
  projection.toProjection = context.space() *
                            Matrix4::translation(-context.vec3("projectionCenter")) *
                            math::transpose(math::eulerToMatrix(context.vec3("rotate")));
  const bool isAngleU = shape != UvProjectionShape::Planar;
  const bool isAngleV = shape == UvProjectionShape::Spherical;
  const char* names[] = {isAngleU ? "projectionHorizontalSweep" : "projectionWidth",
                         isAngleV ? "projectionVerticalSweep" : "projectionHeight"};
  projection.width = context.real(names[0]) * (isAngleU ? kDegree : 1);
  projection.height = context.real(names[1]) * (isAngleV ? kDegree : 1);
  projection.imageCenterU = context.real("imageCenterX");
  projection.imageCenterV = context.real("imageCenterY");
  projection.imageScaleU = context.real("imageScaleU");
  projection.imageScaleV = context.real("imageScaleV");
  projection.imageAngle = context.real("rotationAngle");
  if (isAngleU) projection.correctsSeam = context.boolean("seamCorrect");
  return projection;
}

Result<void> fitProjection(Context& context, const ParsedArgs& args, Node& node,
                           const MeshItem& item, const std::vector<Index>& faces,
                           UvProjectionShape shape) {
  dg::Graph& graph = context.document.graph();
  const Plug size = node.plug("projectionScale"), center = node.plug("projectionCenter");
  const bool isWorld = args.boolean("worldSpace");
  const Matrix4 space = isWorld ? item.path.inclusiveMatrix() : Matrix4();
  if (args.boolean("perInstance"))
    return fail("-perInstance has nothing to work on: instances share their UV sets here");
  if (args.has("mapDirection"))
    HOST_TRY(turnToDirection(context, args, node, item, faces, space, shape));
  if (args.boolean("smartFit", true)) {
    const auto turn = graph.getVec3(node.plug("rotate"));
    if (!turn) return failWith(turn.error());
    const Matrix4 axes = math::eulerToMatrix(*turn);
    math::Box box;
    for (const FaceId f : faces)
      for (const VertexId v : item.mesh.faceVertices(f))
        box.add(math::transformPoint(item.mesh.point(v), space * math::transpose(axes)));
    if (!box.isEmpty()) {
      if (!hasAny(args, {"projectionCenter", "projectionCenterX", "projectionCenterY",
                         "projectionCenterZ"}))
        HOST_TRY(graph.setVec3(center, math::transformPoint(box.center(), axes)));
      const Vec3 extent = box.max - box.min;
      const auto orOne = [](double x) { return x > 1e-12 ? x : 1.0; };
      double width = orOne(extent.x), height = orOne(extent.y);
      if (args.has("keepImageRatio") && args.boolean("keepImageRatio", true))
        width = height = std::max(extent.x, extent.y);
      if (!hasAny(args, {"projectionScale", "projectionWidth", "projectionHeight"})) {
        if (shape == UvProjectionShape::Planar)
          HOST_TRY(setNumber(context, size.child(0), orOne(width)));
        if (shape != UvProjectionShape::Spherical)
          HOST_TRY(setNumber(context, size.child(1), orOne(height)));
      }
    }
  }
  if (args.has("projectionScaleU"))
    HOST_TRY(setNumber(context, size.child(0), args.real("projectionScaleU")));
  if (args.has("projectionScaleV"))
    HOST_TRY(setNumber(context, size.child(1), args.real("projectionScaleV")));
  return {};
}

void addRoundProjection(Declaration& declaration, ops::UvProjectionShape shape, ProjectionSize size,
                        double radius, std::string radiusHelp) {
  declaration.takes(ComponentType::Face);
  addProjection(declaration, std::move(size));
  addUvSetName(declaration);
  declaration.extraFlag(
      keepImageRatio("changes nothing: the size around is an angle that no face's size sets"));
  declaration.parameter(boolean("seamCorrect", "sc"), "faces across the seam go on beyond it")
      .parameter(real("radius", "r", radius), std::move(radiusHelp))
      .recordedOnly()
      .parameter(boolean("useOldPolyProjection", "uopp"), "of older files")
      .noFlag()
      .recordedOnly()
      .afterFlags([shape](Context& context, const ParsedArgs& args, Node& node,
                          const MeshItem& item, const std::vector<Index>& faces) -> Result<void> {
        HOST_TRY(chooseUvSet(context, args, node, item));
        return fitProjection(context, args, node, item, faces, shape);
      })
      .trial("", "f")
      .trial("-sc 1 -ps 360 2 -rx 30 -ws 1", "f")
      .operation([shape](HistoryContext& context) -> Result<void> {
        const auto set = uvSetToFill(context);
        if (!set) return failWith(set.error());
        return ops::projectUvs(context.mesh, *set, context.faces(), projectionOf(context, shape));
      });
}

}  // namespace host::modelling
