// tumble, track, dolly, roll, viewPlace, viewLookAt, viewSet and viewClipPlane: cameras moved by
// scripts. No steps of undo, as camera moves by hand aren't.
#include "host/viewport/camera_moves.h"

#include <algorithm>
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/edits/bounds.h"
#include "host/math/transform.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using math::Vec3;
using workspace::workspaceOf;

constexpr double kDegreesPerRadian = 57.295779513082323;

/// The camera that a command is about, with what its lens is now.
struct Moved {
  scene::DagPath path;
  viewport::Camera camera;
};

/// The one that is named, else that of the active view.
Result<Moved> cameraOf(Context& context, const ParsedArgs& args) {
  std::string name = args.firstObject();
  if (name.empty()) name = workspaceOf(context.session).views.active().cameraName;
  const auto path = workspace::cameraPath(context.document, name);
  if (!path) return failWith(path.error());
  const auto camera = viewport::gatherCamera(*path);
  if (!camera) return failWith(camera.error());
  return Moved{*path, *camera};
}

CommandResult put(Context& context, const Moved& moved) {
  context.session.undo().noteUnrecorded();
  HOST_TRY(workspace::placeCamera(context.document, moved.path, moved.camera));
  return mel::Value();
}

double degrees(const ParsedArgs& args, const char* flag) {
  return args.real(flag) * kDegreesPerRadian;
}

/// Positive angles turn the camera about the axes that point up and to its right by the right-hand
/// rule. (Which way the real host counts isn't documented.)
CommandResult tumble(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("tumble", moved.error());
  const Vec3 pivot = args.has("pivotPoint") ? args.vec3("pivotPoint")
                                            : viewport::tumbleCentre(moved->camera, false);
  viewport::tumble(moved->camera, pivot, degrees(args, "azimuthAngle"),
                   degrees(args, "elevationAngle"));
  return put(context, *moved);
}

void shift(viewport::Camera& camera, const Vec3& by) {
  camera.world = camera.world * math::Matrix4::translation(by);
}

CommandResult track(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("track", moved.error());
  const viewport::Camera& camera = moved->camera;
  const double right = args.real("right") - args.real("left"),
               up = args.real("up") - args.real("down");
  shift(moved->camera, camera.right() * right + camera.up() * up);
  return put(context, *moved);
}

CommandResult dolly(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("dolly", moved.error());
  viewport::Camera& camera = moved->camera;
  const bool isAbsolute = args.has("absolute");
  if (args.has("orthoScale")) {
    const double scale = args.real("orthoScale");
    if (!(scale > 0) || !std::isfinite(scale))
      return fail("dolly: -orthoScale is above 0, not {}.", scale);
    camera.orthographicWidth = isAbsolute ? scale : camera.orthographicWidth * scale;
  }
  if (args.has("distance")) {
    const double distance = args.real("distance");
    const double step = isAbsolute ? camera.centerOfInterest - distance : distance;
    shift(camera, camera.viewDirection() * step);
    if (args.boolean("dollyTowardsCenter", true)) {
      constexpr double kNearest = 1e-3;
      camera.centerOfInterest = std::max(camera.centerOfInterest - step, kNearest);
    }
  }
  return put(context, *moved);
}

CommandResult roll(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("roll", moved.error());
  viewport::Camera& camera = moved->camera;
  const Vec3 eye = camera.eye(), sight = camera.viewDirection(), target = eye + sight;
  // An absolute roll counts from the upright camera.
  const Vec3 upright{0, 1, 0};
  const Vec3 level = args.has("absolute") ? upright - sight * dot(upright, sight) : camera.up();
  if (!(length(level) > 1e-9))
    return fail("roll: a camera that looks straight up or down has no upright.");
  const Vec3 up = normalized(level), side = cross(sight, up);
  const double angle = args.real("degree"), interest = camera.centerOfInterest;
  viewport::lookAt(camera, eye, target, up * std::cos(angle) + side * std::sin(angle));
  camera.centerOfInterest = interest;
  return put(context, *moved);
}

CommandResult viewPlace(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("viewPlace", moved.error());
  viewport::Camera& camera = moved->camera;
  const Vec3 eye = args.vec3("eyePoint", camera.eye());
  Vec3 target = camera.centerOfInterestPoint();
  if (args.has("viewDirection"))
    target = eye + args.vec3("viewDirection") * camera.centerOfInterest;
  if (args.has("lookAt")) target = args.vec3("lookAt");
  if (!(length(target - eye) > 1e-9))
    return fail("viewPlace: the camera can't look at the point that it stands on.");
  // A direction has no length of its own: the distance to what is looked at stays.
  if (args.has("viewDirection") && !args.has("lookAt"))
    target = eye + normalized(target - eye) * camera.centerOfInterest;
  viewport::lookAt(camera, eye, target, args.vec3("upDirection", camera.up()));
  if (args.has("orthographic")) camera.orthographic = true;
  if (args.has("perspective")) camera.orthographic = false;
  dg::Graph& graph = context.document.graph();
  const dg::Plug lens = moved->path.node()->plug("orthographic");
  if (args.has("fieldOfView")) {
    const double angle = args.real("fieldOfView");
    if (!(angle > 0 && angle < 3.1))
      return fail("viewPlace: a field of view lies between 0 and 178 degrees.");
    HOST_TRY(graph.set(moved->path.node()->plug("focalLength"),
                       camera.horizontalFilmAperture * 25.4 / (2 * std::tan(angle / 2))));
  }
  HOST_TRY(graph.set(lens, std::int64_t{camera.orthographic}));
  return put(context, *moved);
}

/// The middle of what is selected, or of everything.
Vec3 middleOf(scene::Document& document, const scene::SelectionList& selection) {
  math::Box box;
  for (const scene::SelectionItem& item : selection.items())
    if (const auto own = edits::worldBox(item)) box.add(*own);
  if (box.isEmpty())
    for (dg::Node* top : document.worldChildren()) box.add(edits::worldBox(scene::firstPath(*top)));
  return box.isEmpty() ? Vec3() : box.center();
}

CommandResult viewLookAt(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("viewLookAt", moved.error());
  const Vec3 target = args.has("position")
                          ? args.vec3("position")
                          : middleOf(context.document, context.document.selection());
  viewport::Camera& camera = moved->camera;
  if (!(length(target - camera.eye()) > 1e-9))
    return fail("viewLookAt: the camera can't look at the point that it stands on.");
  viewport::lookAt(camera, camera.eye(), target);
  return put(context, *moved);
}

struct Side {
  const char *shortName, *longName;
  Vec3 from, up;  ///< where the camera stands, seen from the centre
};
const Side kSides[] = {
    {"f", "front", {0, 0, 1}, {0, 1, 0}},     {"b", "back", {0, 0, -1}, {0, 1, 0}},
    {"t", "top", {0, 1, 0}, {0, 0, -1}},      {"bo", "bottom", {0, -1, 0}, {0, 0, 1}},
    {"s", "side", {1, 0, 0}, {0, 1, 0}},      {"rs", "rightSide", {1, 0, 0}, {0, 1, 0}},
    {"ls", "leftSide", {-1, 0, 0}, {0, 1, 0}}};

/// Moves a camera to one of the sides of what it looks at; its lens stays as it is. -home and
/// -persp give the place of a new scene's perspective camera.
CommandResult viewSet(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("viewSet", moved.error());
  viewport::Camera& camera = moved->camera;
  bool isMoved = false;
  for (const Side& side : kSides) {
    if (!args.has(side.longName)) continue;
    const Vec3 centre = camera.centerOfInterestPoint();
    const double distance = camera.centerOfInterest;
    viewport::lookAt(camera, centre + side.from * distance, centre, side.up);
    isMoved = true;
  }
  if (args.has("home") || args.has("persp")) {
    const viewport::Camera home = viewport::defaultPerspectiveCamera();
    camera.world = home.world;
    camera.centerOfInterest = home.centerOfInterest;
    camera.tumblePivot = home.tumblePivot;
    isMoved = true;
  }
  if (!isMoved && !args.has("fit"))
    return fail("viewSet: say where to: -front, -side, -top, -persp, -home or -fit.");
  auto done = put(context, *moved);
  if (!done || !args.has("fit")) return done;
  const std::vector<mel::Value> words{std::string("-fitFactor"), args.real("fitFactor", 0.9),
                                      moved->path.transform().partialName()};
  return context.session.callCommand("viewFit", words);
}

CommandResult viewClipPlane(Context& context, const ParsedArgs& args) {
  auto moved = cameraOf(context, args);
  if (!moved) return failAt("viewClipPlane", moved.error());
  viewport::Camera& camera = moved->camera;
  const scene::Units& units = context.document.units();
  if (args.isQuery()) {
    if (args.has("nearClipPlane")) return mel::Value(units.fromCentimeters(camera.nearClip));
    if (args.has("farClipPlane")) return mel::Value(units.fromCentimeters(camera.farClip));
    return fail("viewClipPlane: say which plane to query: -nearClipPlane or -farClipPlane.");
  }
  const double near = args.real("nearClipPlane", camera.nearClip),
               far = args.real("farClipPlane", camera.farClip);
  if (!(near > 0 && far > near) && !camera.orthographic)
    return fail("viewClipPlane: the near plane lies before the eye and the far one behind it.");
  camera.nearClip = near;
  camera.farClip = far;
  return put(context, *moved);
}

CommandResult listCameras(Context& context, const ParsedArgs& args) {
  std::vector<std::string> names;
  for (const dg::NodePtr& node : context.document.graph().nodes()) {
    if (node->type().name != "camera") continue;
    const dg::Value value = context.document.graph().stored(node->plug("orthographic"));
    const auto* number = std::get_if<std::int64_t>(&value);
    const bool isOrthographic = number && *number != 0;
    if (args.has("orthographic") && !isOrthographic) continue;
    if (args.has("perspective") && isOrthographic) continue;
    names.push_back(nodeName(*scene::firstPath(*node).transform().node()));
  }
  std::ranges::sort(names);
  return toValue(std::move(names));
}

}  // namespace

void registerCameraMoves(CommandRegistry& registry) {
  const std::vector<ArgType> point(3, ArgType::Distance), direction(3, ArgType::Double);
  defineQuery(registry, "tumble",
              Syntax()
                  .flag("aa", "azimuthAngle", {ArgType::Angle})
                  .flag("ea", "elevationAngle", {ArgType::Angle})
                  .flag("pp", "pivotPoint", point)
                  .strings(0, 1),
              tumble);
  defineQuery(registry, "track",
              Syntax()
                  .flag("l", "left", {ArgType::Distance})
                  .flag("r", "right", {ArgType::Distance})
                  .flag("u", "up", {ArgType::Distance})
                  .flag("d", "down", {ArgType::Distance})
                  .strings(0, 1),
              track);
  defineQuery(registry, "dolly",
              Syntax()
                  .flag("d", "distance", {ArgType::Distance})
                  .flag("os", "orthoScale", {ArgType::Double})
                  .flag("dtc", "dollyTowardsCenter", {ArgType::Bool})
                  .flag("abs", "absolute")
                  .flag("rel", "relative")
                  .strings(0, 1),
              dolly);
  defineQuery(registry, "roll",
              Syntax()
                  .flag("d", "degree", {ArgType::Angle})
                  .flag("abs", "absolute")
                  .flag("rel", "relative")
                  .strings(0, 1),
              roll);
  defineQuery(registry, "viewPlace",
              Syntax()
                  .flag("eye", "eyePoint", point)
                  .flag("la", "lookAt", point)
                  .flag("vd", "viewDirection", direction)
                  .flag("up", "upDirection", direction)
                  .flag("fov", "fieldOfView", {ArgType::Angle})
                  .flag("o", "orthographic")
                  .flag("p", "perspective")
                  .flag("an", "animate", {ArgType::Bool})
                  .strings(0, 1),
              viewPlace);
  defineQuery(registry, "viewLookAt", Syntax().flag("pos", "position", point).strings(0, 1),
              viewLookAt);
  Syntax sides;
  for (const Side& side : kSides) sides.flag(side.shortName, side.longName);
  defineQuery(registry, "viewSet",
              sides.flag("h", "home")
                  .flag("p", "persp")
                  .flag("fit", "fit")
                  .flag("ff", "fitFactor", {ArgType::Double})
                  .flag("an", "animate", {ArgType::Bool})
                  .strings(0, 1),
              viewSet);
  defineQuery(registry, "viewClipPlane",
              Syntax()
                  .flag("ncp", "nearClipPlane", {ArgType::Distance})
                  .flag("fcp", "farClipPlane", {ArgType::Distance})
                  .queryable()
                  .strings(0, 1),
              viewClipPlane);
  defineQuery(registry, "listCameras", Syntax().flag("o", "orthographic").flag("p", "perspective"),
              listCameras);
}

}  // namespace host::builtins
