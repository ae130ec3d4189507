#include "host/tools/recording.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace host::tools {
namespace {

constexpr std::string_view kFirstLine = "# gestures 1";

constexpr std::array<std::pair<InputKind, std::string_view>, 7> kEventWords{{
    {InputKind::Press, "press"},
    {InputKind::Drag, "drag"},
    {InputKind::Release, "release"},
    {InputKind::Move, "hover"},
    {InputKind::Enter, "enter"},
    {InputKind::KeyPress, "keyDown"},
    {InputKind::KeyRelease, "keyUp"},
}};
constexpr std::array<std::string_view, 4> kButtonWords{"none", "left", "middle", "right"};

/// Gives a result's value to `target`.
template <class T>
Result<void> take(T& target, Result<T> result) {
  if (!result) return failWith(std::move(result.error()));
  target = std::move(*result);
  return {};
}

std::string number(double value) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

/// A text in one line: what would end it, or the line that is read back, is escaped.
std::string escaped(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (c == '\n' || c == '\r' || c == '\\') line += '\\';
    line += c == '\n' ? 'n' : c == '\r' ? 'r' : c;
  }
  return line;
}

std::string unescaped(std::string_view line) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool isEscape = line[i] == '\\' && i + 1 < line.size();
    const char c = line[isEscape ? ++i : i];
    text += isEscape && c == 'n' ? '\n' : isEscape && c == 'r' ? '\r' : c;
  }
  return text;
}

std::string formatEvent(const InputEvent& event) {
  std::string line;
  for (const auto& [kind, word] : kEventWords)
    if (kind == event.kind) line = word;
  line += ' ' + event.panel + ' ' + number(event.position.x) + ' ' + number(event.position.y);
  if (!event.isMouse()) line += ' ' + event.key;
  if (event.button != MouseButton::None)
    line += ' ' + std::string(kButtonWords.at(static_cast<std::size_t>(event.button)));
  if (event.shift) line += " shift";
  if (event.control) line += " control";
  if (event.alt) line += " alt";
  if (event.pressure != 1) line += " pressure " + number(event.pressure);
  if (event.tiltX != 0 || event.tiltY != 0)
    line += " tilt " + number(event.tiltX) + ' ' + number(event.tiltY);
  return line;
}

/// Names have neither blanks nor commas.
std::string isolation(const RecordedView& view) {
  if (!view.isIsolated) return {};
  std::string names;
  for (const std::string& name : view.isolated) names += (names.empty() ? "" : ",") + name;
  return " isolated " + (names.empty() ? "-" : names);
}

std::string formatStep(const RecordedStep& step) {
  const std::string time = number(step.time) + ' ';
  switch (step.kind) {
    case RecordedStep::Kind::Event:
      return time + formatEvent(step.event);
    case RecordedStep::Kind::Turn:
      return time + "turn";
    case RecordedStep::Kind::Tool:
      return time + "tool " + step.text;
    case RecordedStep::Kind::Line:
      return time + "line " + escaped(step.text);
  }
  return {};
}

/// Takes the words of a line one by one.
class Words {
 public:
  explicit Words(std::string_view line) : rest_(line) { skipBlanks(); }

  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }
  std::string_view next() {
    const std::size_t end = std::min(rest_.find(' '), rest_.size());
    const std::string_view word = rest_.substr(0, end);
    rest_.remove_prefix(end);
    skipBlanks();
    return word;
  }
  [[nodiscard]] std::string_view rest() const { return rest_; }

  Result<std::string> text(std::string_view what) {
    if (isAtEnd()) return fail("{} is missing", what);
    return std::string(next());
  }
  Result<double> real(std::string_view what) {
    const std::string_view word = next();
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (word.empty()) return fail("{} is missing", what);
    if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(value))
      return fail(ErrorKind::BadArgument, "'{}' is no number for {}", word, what);
    return value;
  }

 private:
  void skipBlanks() {
    while (rest_.starts_with(' ')) rest_.remove_prefix(1);
  }
  std::string_view rest_;
};

Result<void> parseModifiers(Words& words, InputEvent& event) {
  while (!words.isAtEnd()) {
    const std::string_view word = words.next();
    bool isButton = false;
    for (std::size_t i = 0; i < kButtonWords.size(); ++i)
      if (word == kButtonWords[i]) {
        event.button = static_cast<MouseButton>(i);
        isButton = true;
      }
    if (isButton) continue;
    if (word == "shift") {
      event.shift = true;
    } else if (word == "control") {
      event.control = true;
    } else if (word == "alt") {
      event.alt = true;
    } else if (word == "pressure") {
      HOST_TRY(take(event.pressure, words.real("the pressure")));
      if (event.pressure < 0 || event.pressure > 1)
        return fail("the pressure {} does not lie from 0 to 1", event.pressure);
    } else if (word == "tilt") {
      HOST_TRY(take(event.tiltX, words.real("the tilt")));
      HOST_TRY(take(event.tiltY, words.real("the tilt")));
    } else {
      return fail("'{}' says nothing about an event", word);
    }
  }
  return {};
}

Result<InputEvent> parseEvent(InputKind kind, Words& words) {
  InputEvent event;
  event.kind = kind;
  HOST_TRY(take(event.panel, words.text("the view")));
  HOST_TRY(take(event.position.x, words.real("the place")));
  HOST_TRY(take(event.position.y, words.real("the place")));
  if (!event.isMouse()) HOST_TRY(take(event.key, words.text("the key")));
  HOST_TRY(parseModifiers(words, event));
  return event;
}

Result<RecordedStep> parseStep(std::string_view line) {
  Words words(line);
  RecordedStep step;
  HOST_TRY(take(step.time, words.real("the time")));
  if (step.time < 0) return fail("time begins at 0, not at {}", step.time);
  const std::string_view what = words.next();
  for (const auto& [kind, word] : kEventWords) {
    if (what != word) continue;
    HOST_TRY(take(step.event, parseEvent(kind, words)));
    return step;
  }
  if (what == "turn") {
    step.kind = RecordedStep::Kind::Turn;
  } else if (what == "tool") {
    step.kind = RecordedStep::Kind::Tool;
    step.text = words.rest();
    if (step.text.empty()) return fail("the tool is missing");
  } else if (what == "line") {
    step.kind = RecordedStep::Kind::Line;
    step.text = unescaped(words.rest());
  } else {
    return fail("'{}' is nothing that happens", what);
  }
  return step;
}

void readIsolation(std::string_view names, RecordedView& view) {
  view.isIsolated = true;
  while (!names.empty() && names != "-") {
    const std::size_t end = std::min(names.find(','), names.size());
    view.isolated.emplace_back(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
  }
}

Result<RecordedView> parseView(Words& words) {
  RecordedView view;
  HOST_TRY(take(view.panel, words.text("the view")));
  double width = 0, height = 0;
  HOST_TRY(take(width, words.real("the width")));
  HOST_TRY(take(height, words.real("the height")));
  if (!(width >= 1 && height >= 1 && width <= 32767 && height <= 32767))
    return fail("no view has {} x {} pixels", width, height);
  view.port = {static_cast<int>(width), static_cast<int>(height)};
  HOST_TRY(take(view.camera, words.text("the camera")));
  while (!words.isAtEnd()) {
    const std::string_view word = words.next();
    if (word == "xray")
      view.xray = true;
    else if (word == "culling")
      view.culling = true;
    else if (word == "isolated")
      readIsolation(words.next(), view);
    else if (word == "shaded" || word == "wireframe" || word == "wireOnShaded")
      view.style = word;
    else
      return fail("'{}' says nothing about a view", word);
  }
  return view;
}

Result<RecordedCamera> parseCamera(Words& words) {
  RecordedCamera camera;
  HOST_TRY(take(camera.name, words.text("the camera")));
  while (!words.isAtEnd()) {
    const std::string attribute(words.next());
    std::vector<double> values;
    const bool isTriple =
        attribute == "translate" || attribute == "rotate" || attribute == "tumblePivot";
    for (int i = 0; i < (isTriple ? 3 : 1); ++i)
      HOST_TRY(take(values.emplace_back(), words.real(attribute)));
    camera.values.emplace_back(attribute, std::move(values));
  }
  return camera;
}

Result<void> parseLine(std::string_view line, Recording& recording) {
  Words words(line);
  if (const char first = line.front(); (first >= '0' && first <= '9') || first == '-') {
    auto step = parseStep(line);
    if (!step) return failWith(step.error());
    recording.steps.push_back(std::move(*step));
    return {};
  }
  const std::string_view what = words.next();
  if (what == "view") {
    auto view = parseView(words);
    if (!view) return failWith(view.error());
    recording.views.push_back(std::move(*view));
  } else if (what == "camera") {
    auto camera = parseCamera(words);
    if (!camera) return failWith(camera.error());
    recording.cameras.push_back(std::move(*camera));
  } else if (what == "scene") {
    recording.scene = unescaped(words.rest());
  } else if (what == "active") {
    recording.activePanel = words.rest();
  } else if (what == "select" || what == "hilite") {
    auto& names = (what == "select" ? recording.selection : recording.hilite).emplace();
    while (!words.isAtEnd()) names.emplace_back(words.next());
  } else if (what == "set") {
    auto& settings = recording.tool.empty() ? recording.settings : recording.toolSettings;
    settings.push_back(unescaped(words.rest()));
  } else if (what == "tool") {
    recording.tool = words.rest();
  } else {
    return fail("'{}' is nothing that a recording has", what);
  }
  return {};
}

}  // namespace

std::string formatRecording(const Recording& recording) {
  std::string text = std::string(kFirstLine) + "\n";
  const auto line = [&text](const std::string& content) { text += content + "\n"; };
  if (!recording.scene.empty()) line("scene " + escaped(recording.scene));
  for (const RecordedView& view : recording.views)
    line("view " + view.panel + ' ' + std::to_string(view.port.width) + ' ' +
         std::to_string(view.port.height) + ' ' + view.camera + ' ' + view.style +
         (view.xray ? " xray" : "") + (view.culling ? " culling" : "") + isolation(view));
  if (!recording.activePanel.empty()) line("active " + recording.activePanel);
  if (!recording.cameras.empty()) line("# cm, radians and, for the lens, millimetres and inches");
  for (const RecordedCamera& camera : recording.cameras) {
    std::string values;
    for (const auto& [attribute, numbers] : camera.values) {
      values += ' ' + attribute;
      for (const double value : numbers) values += ' ' + number(value);
    }
    line("camera " + camera.name + values);
  }
  const auto listed = [&](const char* what, const std::optional<std::vector<std::string>>& names) {
    if (!names) return;
    std::string content = what;
    for (const std::string& name : *names) content += ' ' + name;
    line(content);
  };
  listed("select", recording.selection);
  listed("hilite", recording.hilite);
  for (const std::string& setting : recording.settings) line("set " + escaped(setting));
  if (!recording.tool.empty()) line("tool " + recording.tool);
  for (const std::string& setting : recording.toolSettings) line("set " + escaped(setting));
  if (!recording.steps.empty()) line("# seconds, what happened, view, place in pixels");
  for (const RecordedStep& step : recording.steps) line(formatStep(step));
  return text;
}

Result<Recording> parseRecording(std::string_view text) {
  if (!text.starts_with(kFirstLine))
    return fail("This is no recording: one begins with '{}'.", kFirstLine);
  Recording recording;
  int lineNumber = 0;
  double last = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++lineNumber;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('#')) continue;
    const auto read = parseLine(line, recording);
    if (!read) return fail("Line {} of the recording: {}.", lineNumber, read.error().message);
    if (recording.steps.empty()) continue;
    if (recording.steps.back().time < last)
      return fail("Line {} of the recording: time goes back from {} to {}.", lineNumber, last,
                  recording.steps.back().time);
    last = recording.steps.back().time;
  }
  return recording;
}

}  // namespace host::tools
