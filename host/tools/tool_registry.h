#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/base/signal.h"
#include "host/base/timers.h"
#include "host/tools/tool_context.h"
#include "host/viewport/camera.h"
#include "host/viewport/picking.h"
#include "host/viewport/scene_view.h"

namespace host::tools {

/// What a tumble turns about.
enum class TumblePivot : std::uint8_t {
  Point,             ///< the camera's tumble pivot
  CenterOfInterest,  ///< what the camera looks at
  Eye,               ///< the camera's own place, off it by the tumble pivot
};

/// How the camera turns when it is dragged.
struct TumbleSettings {
  TumblePivot pivot = TumblePivot::Point;
  double scale = 1;        ///< times the usual speed
  bool locksAxes = true;   ///< orthographic views don't turn
  bool isStepped = false;  ///< orthographic views turn by whole steps
  double stepDegrees = 5;
};

/// How tools see the views, which belong to a layer above.
struct ViewAccess {
  /// What a panel shows now; an empty name means the active one.
  std::function<Result<viewport::SceneView>(const std::string& panel)> scene;
  /// The same with all that is no mesh; for clicks, not for every move of the pointer.
  std::function<Result<viewport::SceneView>(const std::string& panel)> whole;
  /// The whole where that is known.
  [[nodiscard]] Result<viewport::SceneView> wholeOf(const std::string& panel) const {
    return whole ? whole(panel) : scene(panel);
  }
  /// What a click may pick, by the selection mode.
  std::function<viewport::PickOptions()> pickOptions;
  /// Moves the panel's camera node to where the camera stands.
  std::function<Result<void>(const std::string& panel, const viewport::Camera& camera)> setCamera;
  /// The pointer is there now, and the panel the active one.
  std::function<void(const InputEvent& event)> pointerAt;
};

/// The named tool contexts, which of them is current, and the road that input takes to it.
class ToolRegistry {
 public:
  static constexpr std::string_view kSelect = "selectSuperContext";

  /// Has the built-in contexts: select, move, rotate and scale, and the camera's tumble, track and
  /// dolly. A button that rests is timed by `timers`, which must outlive the registry.
  explicit ToolRegistry(Timers& timers);
  ~ToolRegistry();

  // Contexts.
  Result<void> add(const std::string& name, std::shared_ptr<ToolContext> context);
  /// The current context is left first, for the select tool. Built-in contexts can't be removed.
  Result<void> remove(const std::string& name);
  [[nodiscard]] std::shared_ptr<ToolContext> find(std::string_view name) const;
  [[nodiscard]] std::vector<std::string> names() const;  ///< sorted
  [[nodiscard]] bool isBuiltin(std::string_view name) const;
  /// A name that is free: the stem with the lowest number from 1 on.
  [[nodiscard]] std::string uniqueName(const std::string& stem) const;

  // The current one.
  [[nodiscard]] const std::string& currentName() const { return currentName_; }
  [[nodiscard]] const std::shared_ptr<ToolContext>& current() const { return current_; }
  /// Cleans the current context up and sets the other one up. To the same one again: it is set up
  /// anew.
  Result<void> setCurrent(const std::string& name);
  /// After the current context has changed.
  Signal<> currentChanged;

  // Input.
  /// Hands an event to the current context; with Alt down, mouse events move the camera instead:
  /// left tumbles, middle tracks, right dollies. A gesture stays with the context that got its
  /// press.
  /// @return whether somebody used it
  bool handle(const InputEvent& event);
  /// Before an event is handed on; holds, which the time makes, aren't told of.
  Signal<const InputEvent&> received;
  /// Whether a tool is at work with an event.
  [[nodiscard]] bool isHandling() const { return handling_ > 0; }
  /// Where the pointer was last, and with which button and modifiers.
  [[nodiscard]] const InputEvent& lastEvent() const { return last_; }

  /// Seconds that a button must rest until a tool hears of it.
  static constexpr double kHoldDelay = 0.5;

  ViewAccess views;
  /// Gets the keys that the tool leaves, and all tools: whether it used one.
  std::function<bool(const InputEvent&)> unusedKey;
  viewport::Picker& picker() { return picker_; }
  TumbleSettings tumble;

 private:
  bool handleMouse(const InputEvent& event);
  bool handleKey(const InputEvent& event);
  void startHold(const InputEvent& event);
  [[nodiscard]] std::shared_ptr<ToolContext> receiver(const InputEvent& event) const;

  std::map<std::string, std::shared_ptr<ToolContext>, std::less<>> contexts_;
  std::vector<std::string> builtins_;
  std::shared_ptr<ToolContext> current_, gesture_;
  std::string currentName_;
  InputEvent last_;
  Timers& timers_;
  Timers::Id holdTimer_ = 0;
  int handling_ = 0;
  viewport::Picker picker_;
};

}  // namespace host::tools
