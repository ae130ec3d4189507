#include "host/builtins/view/gesture_recording.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/builtins/select/selection_modes.h"
#include "host/builtins/view/tool_views.h"
#include "host/builtins/view/views.h"
#include "host/cmd/loop.h"

namespace host::builtins {
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

constexpr std::array<std::pair<DisplayStyle, const char*>, 3> kStyles{
    {{DisplayStyle::Wireframe, "wireframe"},
     {DisplayStyle::Shaded, "shaded"},
     {DisplayStyle::WireOnShaded, "wireOnShaded"}}};

struct RecordingState {
  std::unique_ptr<tools::Recorder> recorder;
  std::string file;
};

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
  for (const auto& each : view.isolated)
    if (const auto node = each.lock(); node && node->isAlive())
      recorded.isolated.push_back(nodeName(*node));
  return recorded;
}

/// What a recording names and the scene doesn't have.
Result<void> checkFits(cmd::Session& session, const Recording& recording) {
  Views& views = session.service<Views>();
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
    if (plug.isNull() || values.empty()) return fail("A camera has no attribute '{}'.", attribute);
    const auto done = values.size() == 3 ? graph.setVec3(plug, {values[0], values[1], values[2]})
                                         : graph.set(plug, dg::Value(values[0]));
    if (!done) return fail("The camera '{}': {}", camera.name, done.error().message);
  }
  return {};
}

void applyView(cmd::Session& session, const RecordedView& recorded) {
  View& view = *session.service<Views>().find(recorded.panel);
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

}  // namespace

Recording recordingOfNow(cmd::Session& session) {
  Recording recording;
  recording.scene = session.document().fileName();
  Views& views = session.service<Views>();
  for (const View& view : views.all()) {
    recording.views.push_back(viewOfNow(view));
    const bool isKnown =
        std::any_of(recording.cameras.begin(), recording.cameras.end(),
                    [&](const RecordedCamera& camera) { return camera.name == view.cameraName; });
    if (!isKnown && cameraPath(session.document(), view.cameraName))
      recording.cameras.push_back(cameraOfNow(session.document(), view.cameraName));
  }
  recording.activePanel = views.active().panel;
  tools::ToolRegistry& tools = toolsOf(session);
  recording.settings = selectionSettings(session);
  recording.settings.push_back(settingsOfTumble(tools.tumble));
  recording.tool = tools::toolWords(tools);
  for (std::string& line : tools.current()->settings(tools.currentName()))
    recording.toolSettings.push_back(std::move(line));
  return recording;
}

Result<void> startRecording(cmd::Session& session, const std::string& file) {
  RecordingState& state = session.service<RecordingState>();
  if (state.recorder) return fail("'{}' is being recorded; stop it first.", state.file);
  if (file.empty()) return fail("Name the file that the recording goes to.");
  state.file = file;
  state.recorder =
      std::make_unique<tools::Recorder>(session, toolsOf(session), recordingOfNow(session));
  return {};
}

Result<std::string> stopRecording(cmd::Session& session) {
  RecordingState& state = session.service<RecordingState>();
  if (!state.recorder) return fail("Nothing is being recorded.");
  const std::string text = tools::formatRecording(state.recorder->recording());
  std::ofstream file(state.file, std::ios::binary);
  file << text;
  file.close();
  if (!file) return fail("'{}' can't be written; the recording goes on.", state.file);
  state.recorder.reset();
  return state.file;
}

Result<void> playRecording(cmd::Session& session, const Recording& recording, std::size_t steps) {
  HOST_TRY(checkFits(session, recording));
  for (const RecordedCamera& camera : recording.cameras)
    HOST_TRY(placeRecorded(session.document(), camera));
  for (const RecordedView& view : recording.views) applyView(session, view);
  if (!recording.activePanel.empty()) session.service<Views>().setActive(recording.activePanel);
  tools::ToolRegistry& tools = toolsOf(session);
  for (const std::string& line : recording.settings) HOST_TRY(tools::runLine(session, line));
  if (!recording.tool.empty()) HOST_TRY(tools::chooseTool(session, tools, recording.tool));
  for (const std::string& line : recording.toolSettings) HOST_TRY(tools::runLine(session, line));
  tools::playSteps(session, tools, recording, session.loop().now(), 0, steps);
  return {};
}

Result<void> playRecordingFile(cmd::Session& session, const std::string& file) {
  if (session.service<RecordingState>().recorder)
    return fail("A recording is under way; stop it before you play one.");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return fail("'{}' can't be read.", file);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  const auto recording = tools::parseRecording(text);
  if (!recording) return fail("'{}': {}", file, recording.error().message);
  return playRecording(session, *recording, recording->steps.size());
}

}  // namespace host::builtins
