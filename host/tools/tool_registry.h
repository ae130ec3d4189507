#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/tools/timers.h"
#include "host/tools/tool_context.h"
#include "host/viewport/camera.h"
#include "host/viewport/picking.h"
#include "host/viewport/scene_view.h"

namespace host::tools {

/// How tools see the views, which belong to a layer above.
struct ViewAccess {
  /// What a panel shows now; an empty name means the active one.
  std::function<Result<viewport::SceneView>(const std::string& panel)> scene;
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
  /// dolly.
  ToolRegistry();
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
  /// Called after the current context has changed.
  std::function<void()> currentChanged;

  // Input.
  /// Hands an event to the current context; with Alt down, mouse events move the camera instead:
  /// left tumbles, middle tracks, right dollies. A gesture stays with the context that got its
  /// press.
  /// @return whether somebody used it
  bool handle(const InputEvent& event);
  /// Where the pointer was last, and with which button and modifiers.
  [[nodiscard]] const InputEvent& lastEvent() const { return last_; }

  [[nodiscard]] Timers& timers() { return timers_; }
  /// Seconds that a button must rest until a tool hears of it.
  static constexpr double kHoldDelay = 0.5;

  ViewAccess views;
  /// Cameras turn about their centre of interest, not about their tumble pivot.
  bool tumblesAboutInterest = false;
  viewport::Picker& picker() { return picker_; }

 private:
  bool handleKey(const InputEvent& event);
  void startHold(const InputEvent& event);
  [[nodiscard]] std::shared_ptr<ToolContext> receiver(const InputEvent& event) const;

  std::map<std::string, std::shared_ptr<ToolContext>, std::less<>> contexts_;
  std::vector<std::string> builtins_;
  std::shared_ptr<ToolContext> current_, gesture_;
  std::string currentName_;
  InputEvent last_;
  Timers timers_;
  Timers::Id holdTimer_ = 0;
  viewport::Picker picker_;
};

}  // namespace host::tools
