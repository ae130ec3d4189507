#include "host/workspace/recordings.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "host/workspace/workspace.h"

namespace host::workspace {
namespace {

using tools::RecordedCamera;
using tools::RecordedView;
using tools::Recording;
using viewport::DisplayStyle;

/// Attributes of the camera's transform and of its shape that decide what a view shows.
constexpr std::array kPlaceAttributes{"translate", "rotate"};
constexpr std::array kLensAttributes{"focalLength",          "horizontalFilmAperture",
                                     "verticalFilmAperture", "filmFit",
                                     "nearClipPlane",        "farClipPlane",
                                     "orthographic",         "orthographicWidth",
                                     "centerOfInterest",     "tumblePivot"};

constexpr std::array<std::pair<DisplayStyle, const char*>, 5> kStyles{
    {{DisplayStyle::Wireframe, "wireframe"},
     {DisplayStyle::Shaded, "shaded"},
     {DisplayStyle::WireOnShaded, "wireOnShaded"},
     {DisplayStyle::BoundingBox, "boundingBox"},
     {DisplayStyle::Points, "points"}}};

double numberOf(const dg::Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  const auto* integer = std::get_if<std::int64_t>(&value);
  return integer ? static_cast<double>(*integer) : 0;
}

bool isTriple(std::string_view attribute) {
  return attribute == "translate" || attribute == "rotate" || attribute == "tumblePivot";
}

RecordedCamera cameraOfNow(scene::Document& document, const std::string& name) {
  RecordedCamera camera;
  camera.name = name;
  const auto path = cameraPath(document, name);
  if (!path) return camera;
  const auto read = [&](dg::Node& node, const char* attribute) {
    dg::Graph& graph = document.graph();
    if (isTriple(attribute)) {
      if (const auto v = graph.getVec3(node.plug(attribute)))
        camera.values.emplace_back(attribute, std::vector<double>{v->x, v->y, v->z});
    } else if (const auto value = graph.get(node.plug(attribute))) {
      camera.values.emplace_back(attribute, std::vector<double>{numberOf(*value)});
    }
  };
  for (const char* attribute : kPlaceAttributes) read(*path->transform().node(), attribute);
  for (const char* attribute : kLensAttributes) read(*path->node(), attribute);
  return camera;
}

std::string settingsOfTumble(const tools::TumbleSettings& settings) {
  return fmt::format(
      "tumbleCtx -e -localTumble {} -tumbleScale {} -orthoLock {} -orthoStep {} "
      "-autoOrthoConstrain {} tumbleContext",
      static_cast<int>(settings.pivot), settings.scale, settings.locksAxes ? 1 : 0,
      settings.stepDegrees, settings.isStepped ? 1 : 0);
}

RecordedView viewOfNow(const View& view) {
  RecordedView recorded;
  recorded.panel = view.panel;
  recorded.camera = view.cameraName;
  recorded.port = view.port;
  for (const auto& [style, word] : kStyles)
    if (view.options.style == style) recorded.style = word;
  recorded.xray = view.options.xray;
  recorded.culling = view.options.backFaceCulling;
  recorded.isIsolated = view.isIsolated;
  for (const dg::Node* node : isolatedNodes(view))
    recorded.isolated.push_back(scene::isDagNode(*node) ? scene::firstPath(*node).partialName()
                                                        : node->name());
  return recorded;
}

/// What a recording names and the scene doesn't have.
Result<void> checkFits(cmd::Session& session, Views& views, const Recording& recording) {
  for (const RecordedView& view : recording.views)
    if (!views.find(view.panel))
      return fail("The recording goes through the view '{}', which isn't there.", view.panel);
  for (const RecordedCamera& camera : recording.cameras)
    if (!cameraPath(session.document(), camera.name))
      return fail("The recording looks through the camera '{}', which the scene doesn't have.",
                  camera.name);
  return {};
}

Result<void> placeRecorded(scene::Document& document, const RecordedCamera& camera) {
  const auto path = cameraPath(document, camera.name);
  if (!path) return failWith(path.error());
  const scene::Journal::Scope unrecorded(document.journal(), nullptr);
  dg::Graph& graph = document.graph();
  for (const auto& [attribute, values] : camera.values) {
    const bool isPlace = attribute == "translate" || attribute == "rotate";
    dg::Node* node = isPlace ? path->transform().node() : path->node();
    const dg::Plug plug = node->plug(attribute);
    if (plug.isNull() || values.empty())
      return fail(ErrorKind::NotFound, "A camera has no attribute '{}'.", attribute);
    const auto done = values.size() == 3 ? graph.setVec3(plug, {values[0], values[1], values[2]})
                                         : graph.set(plug, dg::Value(values[0]));
    if (!done) return fail("The camera '{}': {}", camera.name, done.error().message);
  }
  return {};
}

void applyView(cmd::Session& session, View& view, const RecordedView& recorded) {
  view.cameraName = recorded.camera;
  view.port = recorded.port;
  for (const auto& [style, word] : kStyles)
    if (recorded.style == word) view.options.style = style;
  view.options.xray = recorded.xray;
  view.options.backFaceCulling = recorded.culling;
  view.isIsolated = recorded.isIsolated;
  view.isolated.clear();
  for (const std::string& name : recorded.isolated)
    if (const auto list = session.document().resolveAll({name}); list && !list->isEmpty())
      view.isolated.push_back(list->items().front().node->weak_from_this());
}

/// Selects and hilites what was. Another scene keeps its own: there the hand works on that.
void pickRecorded(scene::Document& document, const Recording& recording) {
  const scene::Journal::Scope unrecorded(document.journal(), nullptr);
  if (recording.selection)
    if (auto list = document.resolveAll(*recording.selection))
      document.setSelection(std::move(*list));
  if (recording.hilite)
    if (auto list = document.resolveAll(*recording.hilite)) document.setHilite(std::move(*list));
}

}  // namespace

Recording Recordings::ofNow() {
  Recording recording;
  recording.scene = session_.document().fileName();
  for (const View& view : workspace_.views.all()) {
    recording.views.push_back(viewOfNow(view));
    const bool isKnown =
        std::any_of(recording.cameras.begin(), recording.cameras.end(),
                    [&](const RecordedCamera& camera) { return camera.name == view.cameraName; });
    if (!isKnown && cameraPath(session_.document(), view.cameraName))
      recording.cameras.push_back(cameraOfNow(session_.document(), view.cameraName));
  }
  recording.activePanel = workspace_.views.active().panel;
  tools::ToolRegistry& toolbox = workspace_.toolbox;
  recording.selection = session_.document().selection().names();
  recording.hilite = session_.document().hilite().names();
  recording.settings = settingLines(workspace_.selectionModes);
  recording.settings.push_back(settingsOfTumble(toolbox.tumble));
  recording.tool = tools::toolWords(toolbox);
  recording.toolSettings = toolbox.current()->settings(toolbox.currentName());
  // Tools that may be chosen later: what is not said to them by name, since they may not be there.
  for (const std::string& name : toolbox.names()) {
    if (name == toolbox.currentName() || toolbox.isBuiltin(name)) continue;
    for (std::string& line : toolbox.find(name)->settings(name))
      if (!line.ends_with(" " + name) &&
          std::ranges::find(recording.toolSettings, line) == recording.toolSettings.end())
        recording.toolSettings.push_back(std::move(line));
  }
  return recording;
}

Result<void> Recordings::start(const std::string& file) {
  if (recorder_) return fail("'{}' is being recorded; stop it first.", file_);
  if (file.empty()) return fail("Name the file that the recording goes to.");
  file_ = file;
  // A plug-in's tool may turn cameras its own way while it is in hand, and finds out at its start
  // what to go back to. So it is taken anew, as it is where the recording plays, and what cameras
  // did without it comes before it.
  tools::ToolRegistry& toolbox = workspace_.toolbox;
  const std::string tool = toolbox.currentName(), with = settingsOfTumble(toolbox.tumble);
  std::string without = with;
  if (!toolbox.isBuiltin(tool) && !(workspace_.hand.hand && workspace_.hand.hand->isDown())) {
    HOST_TRY(toolbox.setCurrent(std::string(tools::ToolRegistry::kSelect)));
    without = settingsOfTumble(toolbox.tumble);
    HOST_TRY(toolbox.setCurrent(tool));
  }
  Recording begun = ofNow();
  if (without != with) {
    std::ranges::replace(begun.settings, settingsOfTumble(toolbox.tumble), without);
    begun.toolSettings.insert(begun.toolSettings.begin(), with);
  }
  recorder_ = std::make_unique<tools::Recorder>(session_, toolbox, std::move(begun));
  return {};
}

Result<std::string> Recordings::stop() {
  if (!recorder_) return fail("Nothing is being recorded.");
  const std::string text = tools::formatRecording(recorder_->recording());
  std::ofstream file(file_, std::ios::binary);
  file << text;
  file.close();
  if (!file) return fail("'{}' can't be written; the recording goes on.", file_);
  recorder_.reset();
  return file_;
}

Result<void> Recordings::play(const Recording& recording, std::size_t steps) {
  HOST_TRY(checkFits(session_, workspace_.views, recording));
  for (const RecordedCamera& camera : recording.cameras)
    HOST_TRY(placeRecorded(session_.document(), camera));
  for (const RecordedView& view : recording.views)
    applyView(session_, *workspace_.views.find(view.panel), view);
  if (!recording.activePanel.empty()) workspace_.views.setActive(recording.activePanel);
  tools::ToolRegistry& toolbox = workspace_.toolbox;
  pickRecorded(session_.document(), recording);
  for (const std::string& line : recording.settings) HOST_TRY(tools::runLine(session_, line));
  if (!recording.tool.empty()) HOST_TRY(tools::chooseTool(session_, toolbox, recording.tool));
  for (const std::string& line : recording.toolSettings) HOST_TRY(tools::runLine(session_, line));
  tools::playSteps(session_, toolbox, recording, session_.loop().now(), 0, steps);
  return {};
}

Result<void> Recordings::playFile(const std::string& file) {
  if (recorder_) return fail("A recording is under way; stop it before you play one.");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return fail("'{}' can't be read.", file);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  const auto recording = tools::parseRecording(text);
  if (!recording) return fail("'{}': {}", file, recording.error().message);
  return play(*recording, recording->steps.size());
}

}  // namespace host::workspace
