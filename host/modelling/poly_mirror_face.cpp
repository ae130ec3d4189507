#include <algorithm>
#include <numbers>

#include "host/math/box.h"
#include "host/modelling/declare/placement.h"
#include "host/ops/topology/mirror.h"

namespace host::modelling {

namespace {

enum MirrorAxis { kBoundingBox, kObject, kWorld };

/// What the attributes say of the plane. `Read` gives the integer at an attribute.
template <class Read>
struct Side {
  explicit Side(Read read) {
    // `direction` says both in one number, +X, -X, +Y, -Y, +Z, -Z, as long as nobody touched the
    // two or marked the node as one of today.
    const bool isNew = read("maya2017") != 0 || read("axis") != 0 || read("axisDirection") != 1;
    const int both = read("direction");
    axis = isNew ? read("axis") : both / 2;
    isNegative = (isNew ? read("axisDirection") : both % 2) != 0;
  }
  int axis;
  bool isNegative;
};

Result<void> mirror(HistoryContext& context) {
  using Join = ops::MirrorOptions::Join;
  using Flip = ops::MirrorOptions::FlipUvs;
  constexpr Join kJoins[] = {Join::Apart, Join::Weld, Join::Bridge};
  constexpr Flip kFlips[] = {Flip::None, Flip::U, Flip::V};
  const auto join = context.choice("mergeMode", 3), flip = context.choice("flipUVs", 3);
  if (!join) return failWith(join.error());
  if (!flip) return failWith(flip.error());
  const Side side([&](const char* attribute) { return context.integer(attribute); });
  if (side.axis < 0 || side.axis > 2)
    return fail(ErrorKind::BadArgument, "the mirror axis must be X, Y or Z");
  math::Vec3 normal;
  normal[side.axis] = side.isNegative ? -1 : 1;
  ops::MirrorOptions options;
  options.origin = context.vec3("pivot");
  options.normal = normal;
  options.cut = context.boolean("cutMesh");
  options.join = kJoins[*join];
  constexpr double kAutomatic = 0.001;
  const bool isCustom = context.integer("mergeThresholdType") != 0;
  options.distance = isCustom ? context.real("mergeThreshold") : kAutomatic;
  options.flipUvs = kFlips[*flip];
  options.smoothingAngle = context.real("smoothingAngle");
  options.space = context.space();
  auto made = ops::mirrorMesh(context.mesh, options);
  if (!made) return failWith(made.error());
  std::vector<FaceId> faces = std::move(made->copies);
  faces.insert(faces.end(), made->bridges.begin(), made->bridges.end());
  context.makes(std::move(faces));
  return {};
}

int numberAt(Context& context, Node& node, const char* attribute) {
  const auto value = context.document.graph().get(node.plug(attribute));
  const auto* integer = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return integer ? static_cast<int>(*integer) : 0;
}

/// The side of the object's box that the copy goes to, or its middle when that is cut there.
math::Vec3 placeOnBox(const mesh::Mesh& mesh, const math::Matrix4& space, int axis, bool isNegative,
                      bool isCut) {
  math::Box box;
  for (const math::Vec3f& point : mesh.points())
    box.add(math::transformPoint(math::Vec3(point), space));
  math::Vec3 place = box.center();
  if (!isCut && !box.isEmpty()) place[axis] = isNegative ? box.min[axis] : box.max[axis];
  return place;
}

/// Where the mirror plane stands without -pivot: as mirrorAxis says, moved by mirrorPosition.
Result<void> placePlane(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                        const std::vector<Index>&) {
  dg::Graph& graph = context.document.graph();
  if (args.has("direction") && !args.has("axis") && !args.has("axisDirection")) {
    HOST_TRY(graph.set(node.plug("maya2017"), std::int64_t{0}));
    HOST_TRY(graph.set(node.plug("axisDirection"), std::int64_t{1}));
  }
  const auto read = [&](const char* attribute) { return numberAt(context, node, attribute); };
  const Side side(read);
  const int axis = std::clamp(side.axis, 0, 2);
  const int mirrorAxis = read("mirrorAxis");
  if (mirrorAxis == kWorld) HOST_TRY(graph.set(node.plug("worldSpace"), std::int64_t{1}));
  for (const char* flag : {"pivot", "pivotX", "pivotY", "pivotZ"})
    if (args.has(flag)) return {};
  const math::Matrix4 space =
      isOn(context, node, "worldSpace") ? item.path.inclusiveMatrix() : math::Matrix4();
  math::Vec3 place;
  if (mirrorAxis == kBoundingBox)
    place = placeOnBox(item.mesh, space, axis, side.isNegative, read("cutMesh") != 0);
  if (mirrorAxis == kObject) place = math::transformPoint(math::Vec3(), space);
  const auto position = graph.get(node.plug("mirrorPosition"));
  const auto* length = position ? std::get_if<double>(&*position) : nullptr;
  place[axis] += length ? *length : 0;
  return graph.setVec3(node.plug("pivot"), place);
}

}  // namespace

void polyMirrorFace(Declarations& add) {
  add("polyMirrorFace", "Adds the mirror image of the object to it.")
      .node("polyMirror", typeCode("PMIR"), "polyModifierWorld")
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(limited(choice("axis", "a", {"X", "Y", "Z"}), 0, 2), "0 x, 1 y, 2 z")
      .parameter(choice("axisDirection", "ad", {"Positive", "Negative"}, 1),
                 "the copy goes to: 0 the positive, 1 the negative side")
      .commandSets(0)
      .parameter(limited(choice("direction", "d", {"+X", "-X", "+Y", "-Y", "+Z", "-Z"}), 0, 5),
                 "axis and side in one, 0 +x, 1 -x, 2 +y, ...")
      .parameter(keyable(triple("pivot", "p", AttributeType::Distance)), "where the plane stands")
      .parameter(boolean("cutMesh", "cm"), "what lies beyond the plane goes first")
      .parameter(limited(choice("mergeMode", "mm", {"Do not merge", "Merge", "Bridge"}, 1), 0, 2),
                 "0 apart, 1 weld borders, 2 bridge borders")
      .parameter(choice("mergeThresholdType", "mtt", {"Automatic", "Custom"}),
                 "1: -mergeThreshold says how near is welded")
      .commandSets(1)
      .parameter(distance("mergeThreshold", "mt", 0.001), "how near borders are welded")
      .parameter(choice("mirrorAxis", "ma", {"Bounding box", "Object", "World"}, 2),
                 "the plane stands at 0 the box's side, 1 the object's origin, 2 the world's")
      .commandSets(0)
      .parameter(distance("mirrorPosition", "mps"), "moves the plane along the axis")
      .parameter(choice("flipUVs", "fuv", {"Off", "U", "V"}), "UVs of the copy: 1 flip U, 2 flip V")
      .parameter(angle("smoothingAngle", "sa", std::numbers::pi / 6),
                 "edges at the plane are hard beyond it")
      .parameter(boolean("maya2017", "m17"), "axis and axisDirection count, not direction")
      .noFlag()
      .commandSets(1)
      .parameter(triple("mirrorPlaneCenter", "pc", AttributeType::Distance),
                 "of the plane's handle")
      .noFlag()
      .recordedOnly()
      .parameter(triple("mirrorPlaneRotate", "pro", AttributeType::Angle), "of the plane's handle")
      .noFlag()
      .recordedOnly()
      .parameter(integer("firstNewFace", "fnf", -1), "of files of other versions")
      .noFlag()
      .recordedOnly()
      .parameter(integer("lastNewFace", "lnf", -1), "of files of other versions")
      .noFlag()
      .recordedOnly()
      .afterFlags(placePlane)
      .trial("-d 1 -mm 0", "f")
      .trial("-a 1 -cm 1 -mt 0.01", "f")
      .trial("-a 2 -ad 1 -ma 1 -mps 2 -mm 2 -fuv 1 -ws 1", "f")
      .operation(mirror);
}

}  // namespace host::modelling
