// polyEditUV and polyEditUVShell: UVs moved, turned and scaled, and where they are.
#include <cmath>
#include <numbers>

#include "host/builtins/uv/uv_edits.h"
#include "host/mesh/shells.h"
#include "host/ops/uv/edit_uvs.h"

namespace host::builtins {

namespace {

/// What the flags say is done to UVs. -scale off and -rotation off leave those values unused.
ops::UvTransform transformOf(const ParsedArgs& args) {
  ops::UvTransform transform;
  transform.pivotU = args.real("pivotU");
  transform.pivotV = args.real("pivotV");
  if (args.boolean("scale", true)) {
    transform.scaleU = args.real("scaleU", 1);
    transform.scaleV = args.real("scaleV", 1);
  }
  if (args.boolean("rotation", true)) transform.angle = args.real("angle") * std::numbers::pi / 180;
  transform.ratio = args.real("rotateRatio", 1);
  if (args.boolean("relative", true)) {
    transform.shiftU = args.real("uValue");
    transform.shiftV = args.real("vValue");
  }
  return transform;
}

Result<void> edit(Context& context, const ParsedArgs& args, const UvItem& item) {
  for (const char* flag :
       {"uValue", "vValue", "pivotU", "pivotV", "scaleU", "scaleV", "angle", "rotateRatio"})
    if (!std::isfinite(args.real(flag)))
      return fail(ErrorKind::BadArgument, "-{} is not a number.", flag);
  if (!(args.real("rotateRatio", 1) > 0))
    return fail(ErrorKind::BadArgument, "-rotateRatio is above 0.");
  mesh::UvSet set = item.item.mesh.uvSet(item.set);
  const ops::UvTransform transform = transformOf(args);
  ops::transformUvs(set, item.uvs, transform);
  std::vector<math::Vec2f> places;
  places.reserve(item.uvs.size());
  const bool isAbsolute = !args.boolean("relative", true);
  for (const UvId uv : item.uvs) {
    math::Vec2f place = set.points[at(uv)];
    if (isAbsolute && args.has("uValue")) place.u = static_cast<float>(args.real("uValue"));
    if (isAbsolute && args.has("vValue")) place.v = static_cast<float>(args.real("vValue"));
    if (!std::isfinite(place.u) || !std::isfinite(place.v))
      return fail("UV {} of '{}' would go beyond all numbers.", uv,
                  item.item.path.transform().partialName());
    places.push_back(place);
  }
  const bool isStep =
      !isAbsolute && transform.scaleU == 1 && transform.scaleV == 1 && transform.angle == 0;
  std::optional<std::array<double, 2>> step;
  if (isStep) step = {transform.shiftU, transform.shiftV};
  return placeUvs(context.document, item, places, step);
}

/// u and v of each UV, or the one that a flag asks for.
mel::Value placesOf(const ParsedArgs& args, const std::vector<UvItem>& items) {
  const std::string_view asked = args.queried();
  mel::FloatArray values;
  for (const UvItem& item : items)
    for (const UvId uv : item.uvs) {
      const math::Vec2f& place = item.item.mesh.uvSet(item.set).points[at(uv)];
      if (asked != "vValue") values.push_back(place.u);
      if (asked != "uValue") values.push_back(place.v);
    }
  return mel::Value(std::move(values));
}

CommandResult polyEditUv(Context& context, const ParsedArgs& args, const char* name,
                         bool ofShells) {
  auto items = uvItems(context, args, name);
  if (!items) return failWith(std::move(items.error()));
  if (ofShells)
    for (UvItem& item : *items) item.uvs = mesh::connectedUvs(item.item.mesh, item.set, item.uvs);
  if (args.isQuery()) return placesOf(args, *items);
  for (const UvItem& item : *items)
    if (auto done = edit(context, args, item); !done) return failAt(name, done.error());
  return mel::Value(true);
}

Syntax syntax() {
  Syntax syntax;
  syntax.flag("a", "angle", {ArgType::Double})
      .flag("pu", "pivotU", {ArgType::Double})
      .flag("pv", "pivotV", {ArgType::Double})
      .flag("r", "relative", {ArgType::Bool})
      .flag("rot", "rotation", {ArgType::Bool})
      // Width to height of the picture that the map is for, so that turning keeps its shapes.
      .flag("rr", "rotateRatio", {ArgType::Double})
      .flag("s", "scale", {ArgType::Bool})
      .flag("su", "scaleU", {ArgType::Double})
      .flag("sv", "scaleV", {ArgType::Double})
      .flag("u", "uValue", {ArgType::Double})
      .flag("v", "vValue", {ArgType::Double})
      .flag("uvs", "uvSetName", {ArgType::String})
      .queryArgs();
  syntax.queryable().objects(0, -1, true);
  return syntax;
}

}  // namespace

void registerPolyEditUv(CommandRegistry& registry) {
  define(registry, "polyEditUV", syntax(), [](Context& context, const ParsedArgs& args) {
    return polyEditUv(context, args, "polyEditUV", false);
  });
  define(registry, "polyEditUVShell", syntax(), [](Context& context, const ParsedArgs& args) {
    return polyEditUv(context, args, "polyEditUVShell", true);
  });
}

}  // namespace host::builtins
