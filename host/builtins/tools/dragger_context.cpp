// draggerContext: tools whose gestures run scripts.
#include <array>

#include "host/builtins/common/command.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using math::Vec3;
using tools::InputEvent;
using workspace::workspaceOf;

/// What a dragger is told to do, by long flag names.
struct DraggerSettings {
  std::map<std::string, std::string, std::less<>> scripts;
  std::string name, space = "screen", projection = "viewPlane", undoMode = "step", cursor, drawText;
  Vec3 plane{1, 0, 0};  ///< the normal of -projection plane
};

constexpr std::array<const char*, 7> kScripts = {"prePressCommand", "pressCommand",   "dragCommand",
                                                 "holdCommand",     "releaseCommand", "initialize",
                                                 "finalize"};

/// A tool that runs scripts where a hand presses, drags and lets go. A gesture is one step of undo;
/// with -undoMode all (and sequence) each script is a step of its own.
class Dragger final : public tools::ToolContext {
 public:
  explicit Dragger(cmd::Session& session) : ToolContext("draggerContext"), session_(session) {}

  void setup(const InputEvent&) override { run("initialize"); }
  void cleanup() override {
    end();
    run("finalize");
  }
  void press(const InputEvent& event) override {
    end();
    at_ = event;
    if (settings.undoMode == "step") {
      session_.undo().openChunk(settings.name.empty() ? className() : settings.name);
      isChunkOpen_ = true;
    }
    // A script may remove or set aside the tool that it runs for.
    run("prePressCommand");
    anchor_ = drag_ = place(event);
    run("pressCommand");
  }
  void drag(const InputEvent& event) override {
    at_ = event;
    drag_ = place(event);
    run("dragCommand");
  }
  void hold(const InputEvent& event) override {
    at_ = event;
    run("holdCommand");
  }
  void release(const InputEvent& event) override {
    at_ = event;
    drag_ = place(event);
    run("releaseCommand");
    at_.button = tools::MouseButton::None;
    end();
  }
  void abort() override { end(); }
  void draw(const std::string& panel, viewport::DrawList& list) override {
    if (settings.drawText.empty() || at_.button == tools::MouseButton::None || panel != at_.panel)
      return;
    constexpr double kBeside = 12;  // pixels
    list.texts.push_back({.text = settings.drawText,
                          .position = {at_.position.x + kBeside, at_.position.y + kBeside, 0}});
  }

  DraggerSettings settings;
  [[nodiscard]] const Vec3& anchor() const { return anchor_; }
  [[nodiscard]] const Vec3& dragged() const { return drag_; }
  [[nodiscard]] const InputEvent& event() const { return at_; }

 private:
  void end() {
    if (std::exchange(isChunkOpen_, false)) session_.undo().closeChunk();
  }

  void run(const char* which) {
    const auto found = settings.scripts.find(which);
    if (found == settings.scripts.end() || found->second.empty()) return;
    const std::string script = found->second;
    // What went wrong has been said; the gesture goes on.
    (void)session_.executeLine(script);
  }

  /// Pixels in screen space; else the point under the pointer, at the depth of what the camera
  /// looks at or in the plane through the origin.
  [[nodiscard]] Vec3 place(const InputEvent& event) const {
    const Vec3 pixels{event.position.x, event.position.y, 0};
    if (settings.space == "screen") return pixels;
    workspace::Views& views = workspaceOf(session_).views;
    const workspace::View* panel = event.panel.empty() ? &views.active() : views.find(event.panel);
    if (!panel) return pixels;
    const auto path = workspace::cameraPath(session_.document(), panel->cameraName);
    if (!path) return pixels;
    const auto camera = viewport::gatherCamera(*path);
    if (!camera) return pixels;
    const viewport::ViewProjection view(*camera, panel->port);
    if (settings.projection != "plane")
      return view.viewToWorldAt(event.position, camera->centerOfInterestPoint());
    const viewport::ViewRay ray = view.viewToWorld(event.position);
    const double along = dot(settings.plane, ray.farPoint - ray.nearPoint);
    if (std::abs(along) < 1e-12) return drag_;  // seen edge-on
    return ray.nearPoint +
           (ray.farPoint - ray.nearPoint) * (-dot(settings.plane, ray.nearPoint) / along);
  }

  cmd::Session& session_;
  Vec3 anchor_, drag_;
  InputEvent at_;
  bool isChunkOpen_ = false;
};

std::string modifierOf(const InputEvent& event) {
  if (event.control) return event.shift ? "ctrlShift" : "ctrl";
  return event.shift ? "shift" : "none";
}

CommandResult query(const scene::Units& units, const ParsedArgs& args, const Dragger& dragger) {
  const auto point = [&](const Vec3& p) {
    return dragger.settings.space == "screen"
               ? toValue(p)
               : toValue(Vec3{units.fromCentimeters(p.x), units.fromCentimeters(p.y),
                              units.fromCentimeters(p.z)});
  };
  if (args.has("anchorPoint")) return point(dragger.anchor());
  if (args.has("dragPoint")) return point(dragger.dragged());
  if (args.has("button")) return mel::Value(tools::buttonNumber(dragger.event().button));
  if (args.has("modifier")) return mel::Value(modifierOf(dragger.event()));
  if (args.has("space")) return mel::Value(dragger.settings.space);
  if (args.has("projection")) return mel::Value(dragger.settings.projection);
  if (args.has("undoMode")) return mel::Value(dragger.settings.undoMode);
  if (args.has("cursor")) return mel::Value(dragger.settings.cursor);
  if (args.has("drawString")) return mel::Value(dragger.settings.drawText);
  if (args.has("plane")) return toValue(dragger.settings.plane);
  if (args.has("helpString")) return mel::Value(dragger.help);
  for (const char* script : kScripts)
    if (args.has(script)) {
      const auto found = dragger.settings.scripts.find(script);
      return mel::Value(found == dragger.settings.scripts.end() ? std::string() : found->second);
    }
  return fail("draggerContext: say which flag to query.");
}

Result<void> choose(const ParsedArgs& args, const char* flag, std::string& slot,
                    std::initializer_list<std::string_view> words) {
  if (!args.has(flag)) return {};
  const std::string word = args.text(flag);
  for (const std::string_view each : words)
    if (word == each) {
      slot = word;
      return {};
    }
  return fail("draggerContext: '{}' is no -{}: use {}.", word, flag, fmt::join(words, ", "));
}

Result<void> apply(const ParsedArgs& args, Dragger& dragger) {
  DraggerSettings changed = dragger.settings;
  HOST_TRY(choose(args, "space", changed.space, {"world", "object", "screen"}));
  HOST_TRY(choose(args, "projection", changed.projection,
                  {"plane", "viewPlane", "objectPlane", "objectViewPlane"}));
  HOST_TRY(choose(args, "undoMode", changed.undoMode, {"step", "all", "sequence"}));
  if (changed.space == "object" || changed.projection.starts_with("object"))
    return fail("draggerContext: places are told in world or screen space here, not an object's.");
  for (const char* script : kScripts)
    if (args.has(script)) changed.scripts[script] = args.text(script);
  if (args.has("cursor")) changed.cursor = args.text("cursor");
  if (args.has("drawString")) changed.drawText = args.text("drawString");
  if (args.has("plane")) {
    changed.plane = args.vec3("plane");
    if (!(length(changed.plane) > 0))
      return fail("draggerContext: the normal of a plane has a length.");
  }
  dragger.settings = std::move(changed);
  if (args.has("name")) dragger.title = args.text("name");
  if (args.has("helpString")) dragger.help = args.text("helpString");
  for (std::size_t i = 0; i < dragger.images.size(); ++i)
    if (const std::string flag = "image" + std::to_string(i + 1); args.has(flag))
      dragger.images[i] = args.text(flag);
  return {};
}

CommandResult draggerContext(Context& context, const ParsedArgs& args) {
  tools::ToolRegistry& tools = workspaceOf(context.session).toolbox;
  std::string name = args.firstObject();
  const auto found = std::dynamic_pointer_cast<Dragger>(tools.find(name));
  if (args.has("exists")) return mel::Value(found != nullptr);
  if (!args.isCreate()) {
    if (!found) return fail(ErrorKind::NotFound, "draggerContext: Tool '{}' not found.", name);
    if (args.isQuery()) return query(context.document.units(), args, *found);
    HOST_TRY(apply(args, *found));
    return mel::Value(name);
  }
  if (name.empty()) name = tools.uniqueName("draggerContext");
  const auto made = std::make_shared<Dragger>(context.session);
  made->settings.name = name;
  made->title = name;
  HOST_TRY(apply(args, *made));
  HOST_TRY(tools.add(name, made));
  return mel::Value(name);
}

}  // namespace

void registerDraggerContext(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("ppc", "prePressCommand", {ArgType::Script})
      .flag("pc", "pressCommand", {ArgType::Script})
      .flag("dc", "dragCommand", {ArgType::Script})
      .flag("hc", "holdCommand", {ArgType::Script})
      .flag("rc", "releaseCommand", {ArgType::Script})
      .flag("inz", "initialize", {ArgType::Script})
      .flag("fnz", "finalize", {ArgType::Script})
      .flag("hs", "helpString", {ArgType::String})
      .flag("sp", "space", {ArgType::String})
      .flag("pr", "projection", {ArgType::String})
      .flag("pl", "plane", {ArgType::Double, ArgType::Double, ArgType::Double})
      .flag("um", "undoMode", {ArgType::String})
      .flag("cur", "cursor", {ArgType::String})
      .flag("ds", "drawString", {ArgType::String})
      .flag("n", "name", {ArgType::String})
      .flag("i1", "image1", {ArgType::String})
      .flag("i2", "image2", {ArgType::String})
      .flag("i3", "image3", {ArgType::String})
      .flag("ap", "anchorPoint", {}, kQuery)
      .flag("dp", "dragPoint", {}, kQuery)
      .flag("bu", "button", {}, kQuery)
      .flag("mo", "modifier", {}, kQuery)
      .flag("ex", "exists");
  defineQuery(registry, "draggerContext", syntax.editable().queryable().strings(0, 1),
              draggerContext);
}

}  // namespace host::builtins
