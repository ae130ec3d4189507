// viewGesture: what a person does in a view, as a command, for tests, recordings and scripts that
// show something. tabletState: how the pen is held.
#include <cmath>
#include <optional>

#include "host/builtins/common/command.h"
#include "host/cmd/loop.h"
#include "host/edits/bounds.h"
#include "host/math/box.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/point_shape.h"
#include "host/tools/hand.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using nodes::MeshItem;
using nodes::meshItems;
namespace {

using workspace::ScriptHand;
using workspace::View;
using workspace::Views;
using workspace::workspaceOf;

using viewport::ViewPoint;

// A place on the screen travels to plug-ins in 16 bits.
constexpr double kFarthestPixel = 32767;
constexpr int kLargestPort = 16384;
constexpr double kLongestWait = 600;  ///< seconds

class FlagScope {
 public:
  explicit FlagScope(bool& flag) : flag_(flag) { flag_ = true; }
  ~FlagScope() { flag_ = false; }
  FlagScope(const FlagScope&) = delete;
  FlagScope& operator=(const FlagScope&) = delete;

 private:
  bool& flag_;
};

void sendByHand(cmd::Session& session, const tools::InputEvent& event) {
  const FlagScope sending(workspaceOf(session).hand.isSending);
  session.runByHand([&] { (void)workspaceOf(session).toolbox.handle(event); });
}

ScriptHand& handOf(cmd::Session& session) {
  ScriptHand& state = workspaceOf(session).hand;
  // A button that went down in a view which is closed now is up.
  const bool isAstray = state.hand && !state.isSending && state.hand->isDown() &&
                        !workspaceOf(session).views.find(state.hand->panel());
  if (isAstray) state.hand.reset();
  if (!state.hand)
    state.hand = std::make_unique<tools::Hand>(
        [&session](const tools::InputEvent& event) { sendByHand(session, event); });
  return state;
}

/// The middle of what a name stands for, in world space: of a component's vertices, of the box
/// around an object, or a transform's pivot.
Result<math::Vec3> centerOf(scene::Document& document, const std::string& name) {
  const auto list = document.resolveAll({name});
  if (!list) return failWith(list.error());
  if (list->items().size() != 1) return fail("'{}' is not one thing on the screen.", name);
  const auto items = meshItems(*list);
  if (!items) return failWith(items.error());
  const scene::SelectionItem& item = list->items().front();
  if (items->empty()) {
    if (!item.isDag()) return fail("'{}' has no place in space.", name);
    if (const auto others = scene::pointItems(*list); !others.empty()) {
      const auto box = edits::worldBox(item);
      if (!box) return failWith(box.error());
      if (!box->isEmpty()) return box->center();
    }
    return math::transformPoint(math::Vec3{}, item.path.transform().inclusiveMatrix());
  }
  const MeshItem& mesh = items->front();
  const std::vector<VertexId> vertices = mesh.vertices();
  if (vertices.empty()) return fail("'{}' has no vertices.", name);
  const math::Matrix4 toWorld = mesh.path.inclusiveMatrix();
  math::Vec3 sum;
  math::Box box;
  for (const VertexId v : vertices) {
    const math::Vec3 point = math::transformPoint(math::Vec3(mesh.mesh.points()[at(v)]), toWorld);
    sum = sum + point;
    box.add(point);
  }
  return mesh.isObject() ? box.center() : sum / static_cast<double>(vertices.size());
}

/// One call of the command: its words checked, then its events made in their order.
class GestureCall {
 public:
  GestureCall(Context& context, const ParsedArgs& args, tools::Hand& hand, std::string panel)
      : context_(context), args_(args), hand_(hand), panel_(std::move(panel)) {}

  Result<void> check() const {
    for (const char* pair : {"press", "release", "hover"})
      if (args_.has(pair) && args_.has(std::string(pair) + "At"))
        return fail("viewGesture: -{0} and -{0}At are two places; give one.", pair);
    for (const ParsedArgs::FlagUse& use : args_.flagUses())
      if (isPlace(use.spec->longName)) HOST_TRY(checkPlace(use));
    const double pressure = args_.real("pressure", 1);
    if (!(pressure >= 0 && pressure <= 1))
      return fail("viewGesture: the pressure {} does not lie from 0 to 1.", pressure);
    for (int axis = 0; axis < 2; ++axis)
      if (!(std::abs(args_.real("tilt", 0, axis)) <= 90))
        return fail("viewGesture: a tilt lies from -90 to 90 degrees.");
    const int button = args_.integer("button", 1);
    if (button < 1 || button > 3)
      return fail("viewGesture: button 1 is left, 2 middle, 3 right; there is no {}.", button);
    for (int side = 0; side < 2; ++side)
      if (const int size = args_.integer("port", 1, side); size < 1 || size > kLargestPort)
        return fail("viewGesture: a port has 1 to {} pixels a side, not {}.", kLargestPort, size);
    if (const double wait = args_.real("wait", 0); !(wait >= 0 && wait <= kLongestWait))
      return fail("viewGesture: a wait takes 0 to {} seconds, not {}.", kLongestWait, wait);
    return {};
  }

  Result<void> run() {
    if (const auto fits = hand_.use(options()); !fits) return failAt("viewGesture", fits.error());
    if (args_.has("port")) view().port = {args_.integer("port", 1, 0), args_.integer("port", 1, 1)};
    for (const std::string& key : args_.texts("key")) hand_.strike(key);
    halfStrikes("keyDown", tools::InputKind::KeyPress);
    HOST_TRY(each("hover", "hoverAt", &tools::Hand::hover));
    HOST_TRY(each("press", "pressAt", &tools::Hand::press));
    HOST_TRY(each("drag", "dragTo", &tools::Hand::drag));
    HOST_TRY(each("release", "releaseAt", &tools::Hand::release));
    halfStrikes("keyUp", tools::InputKind::KeyRelease);
    return {};
  }

 private:
  /// Looked up anew each time: a tool may add views.
  [[nodiscard]] View& view() const { return *workspaceOf(context_.session).views.find(panel_); }

  /// Keys go down, or come up, where the pointer is.
  void halfStrikes(const char* flag, tools::InputKind kind) {
    for (const std::string& key : args_.texts(flag)) {
      tools::InputEvent event = hand_.state();
      event.kind = kind;
      event.key = key;
      if (!hand_.isDown()) event.button = tools::MouseButton::None;
      sendByHand(context_.session, event);
    }
  }

  static bool isPlace(const std::string& flag) {
    return flag == "press" || flag == "drag" || flag == "release" || flag == "hover";
  }

  Result<void> checkPlace(const ParsedArgs::FlagUse& use) const {
    for (const mel::Value& value : args_.values(use)) {
      const double pixel = value.toFloat().value_or(NAN);
      if (!(std::abs(pixel) <= kFarthestPixel))
        return fail("viewGesture: {} is no pixel that -{} can reach.", pixel, use.spec->longName);
    }
    return {};
  }

  [[nodiscard]] tools::HandOptions options() const {
    tools::HandOptions options;
    options.panel = panel_;
    if (args_.has("button")) options.button = tools::buttonOf(args_.integer("button"));
    if (args_.has("shift")) options.shift = args_.boolean("shift");
    if (args_.has("control")) options.control = args_.boolean("control");
    if (args_.has("alt")) options.alt = args_.boolean("alt");
    if (args_.has("pressure")) options.pressure = args_.real("pressure");
    if (args_.has("tilt")) {
      options.tiltX = args_.real("tilt", 0, 0);
      options.tiltY = args_.real("tilt", 0, 1);
    }
    return options;
  }

  /// Makes an event of every use of the two flags, in the order in which they were given.
  Result<void> each(std::string_view atPixel, std::string_view atComponent,
                    Result<void> (tools::Hand::*event)(ViewPoint)) {
    for (const ParsedArgs::FlagUse& use : args_.flagUses()) {
      if (use.spec->longName != atPixel && use.spec->longName != atComponent) continue;
      if (!workspaceOf(context_.session).views.find(panel_))
        return fail("viewGesture: the view '{}' has been closed.", panel_);
      const auto values = args_.values(use);
      Result<ViewPoint> at = ViewPoint{};
      if (use.spec->longName == atPixel)
        at = ViewPoint{values[0].toFloat().value_or(0), values[1].toFloat().value_or(0)};
      else
        at = placeOf(values[0].string(), atComponent == "pressAt" || atComponent == "hoverAt");
      if (!at) return failWith(at.error());
      if (const auto done = (hand_.*event)(*at); !done) return failAt("viewGesture", done.error());
    }
    return {};
  }

  /// The pixel at a component's centre, as things stand now.
  Result<ViewPoint> placeOf(const std::string& name, bool mustShow) const {
    const View& view = this->view();
    const auto center = centerOf(context_.document, name);
    if (!center) return failAt("viewGesture", center.error());
    const auto path = workspace::cameraPath(context_.document, view.cameraName);
    if (!path) return failWith(path.error());
    const auto camera = viewport::gatherCamera(*path);
    if (!camera) return failWith(camera.error());
    const viewport::ViewPosition at =
        viewport::ViewProjection(*camera, view.port).worldToView(*center);
    if (!at.inFront || !(std::abs(at.x) <= kFarthestPixel && std::abs(at.y) <= kFarthestPixel))
      return fail("viewGesture: '{}' lies out of sight of {}.", name, view.cameraName);
    const ViewPoint pixel{std::round(at.x), std::round(at.y)};
    if (mustShow &&
        (pixel.x < 0 || pixel.y < 0 || pixel.x >= view.port.width || pixel.y >= view.port.height))
      return fail("viewGesture: '{}' lies outside the view {}.", name, view.panel);
    return pixel;
  }

  Context& context_;
  const ParsedArgs& args_;
  tools::Hand& hand_;
  std::string panel_;
};

/// What recordings have to do with a call; nothing when it is a gesture.
std::optional<CommandResult> handleRecording(Context& context, const ParsedArgs& args) {
  const int uses = args.uses("record") + args.uses("stopRecording") + args.uses("play");
  if (uses == 0) return std::nullopt;
  if (uses != static_cast<int>(args.flagUses().size()))
    return CommandResult(fail("viewGesture: -record, -stopRecording and -play stand alone."));
  Result<void> done;
  if (args.has("record")) done = workspaceOf(context.session).recordings.start(args.text("record"));
  if (args.has("play")) done = workspaceOf(context.session).recordings.playFile(args.text("play"));
  if (args.has("stopRecording")) {
    const auto file = workspaceOf(context.session).recordings.stop();
    if (file) return CommandResult(mel::Value(*file));
    done = failWith(file.error());
  }
  if (!done) return CommandResult(failAt("viewGesture", done.error()));
  return CommandResult(mel::Value());
}

CommandResult viewGesture(Context& context, const ParsedArgs& args) {
  ScriptHand& state = handOf(context.session);
  if (state.isSending)
    return fail("viewGesture: a tool is at work with an event; make the next when it is done.");
  if (const auto done = handleRecording(context, args)) return *done;
  Views& views = workspaceOf(context.session).views;
  const std::string panel = args.hasObjects()      ? args.firstObject()
                            : state.hand->isDown() ? state.hand->panel()
                                                   : views.active().panel;
  if (!views.find(panel)) return fail("viewGesture: there is no view '{}'.", panel);
  GestureCall call(context, args, *state.hand, panel);
  HOST_TRY(call.check());
  HOST_TRY(call.run());
  if (!args.has("wait")) return mel::Value();
  if (state.isWaiting)
    return fail("viewGesture: something that waits has run this; -wait ends it.");
  const FlagScope waiting(state.isWaiting);
  context.session.runByHand([&] { context.session.loop().wait(args.real("wait")); });
  return mel::Value();
}

/// What a plug-in asks for the pen that makes the present event, on systems whose windows have
/// nothing for it to hook. The real host is not known to have such a command: this one is ours.
CommandResult tabletState(Context& context, const ParsedArgs& args) {
  const tools::InputEvent& event = workspaceOf(context.session).toolbox.lastEvent();
  if (args.has("pressure")) return mel::Value(event.pressure);
  if (args.has("tilt")) return mel::Value(mel::FloatArray{event.tiltX, event.tiltY});
  return fail("tabletState: say what to query: -pressure or -tilt.");
}

}  // namespace

void registerViewGesture(CommandRegistry& registry) {
  Syntax gesture;
  gesture.flag("po", "port", {ArgType::Int, ArgType::Int})
      .flag("b", "button", {ArgType::Int})
      .flag("sh", "shift", {ArgType::Bool})
      .flag("ctl", "control", {ArgType::Bool})
      .flag("alt", "alt", {ArgType::Bool})
      .flag("p", "press", {ArgType::Double, ArgType::Double})
      .flag("pa", "pressAt", {ArgType::String})
      .flag("d", "drag", {ArgType::Double, ArgType::Double})
      .multiUse()
      .flag("dt", "dragTo", {ArgType::String})
      .multiUse()
      .flag("r", "release", {ArgType::Double, ArgType::Double})
      .flag("ra", "releaseAt", {ArgType::String})
      .flag("h", "hover", {ArgType::Double, ArgType::Double})
      .flag("ha", "hoverAt", {ArgType::String})
      .flag("k", "key", {ArgType::String})
      .multiUse()
      .flag("kd", "keyDown", {ArgType::String})
      .multiUse()
      .flag("ku", "keyUp", {ArgType::String})
      .multiUse()
      .flag("pr", "pressure", {ArgType::Double})
      .flag("ti", "tilt", {ArgType::Double, ArgType::Double})
      .flag("w", "wait", {ArgType::Double})
      .flag("rec", "record", {ArgType::String})
      .flag("sr", "stopRecording")
      .flag("pl", "play", {ArgType::String});
  defineQuery(registry, "viewGesture", gesture.strings(0, 1), viewGesture);
  defineQuery(registry, "tabletState",
              Syntax().flag("p", "pressure").flag("ti", "tilt").queryable(), tabletState);
}

}  // namespace host::builtins
