#include "host/tools/tool_registry.h"

#include <algorithm>
#include <utility>

#include "host/tools/camera_tool.h"
#include "host/tools/select_tool.h"
#include "host/tools/transform_tool.h"

namespace host::tools {

ToolRegistry::ToolRegistry(Timers& timers) : timers_(timers) {
  using Change = TransformTool::Change;
  const auto builtin = [this](const char* name, std::shared_ptr<ToolContext> context,
                              const char* title) {
    context->title = title;
    builtins_.emplace_back(name);
    contexts_.emplace(name, std::move(context));
  };
  builtin("selectSuperContext", std::make_shared<SelectTool>(*this, "selectManip"), "Select Tool");
  builtin("moveSuperContext", std::make_shared<TransformTool>(*this, "manipMove", Change::Move),
          "Move Tool");
  builtin("RotateSuperContext",
          std::make_shared<TransformTool>(*this, "manipRotate", Change::Rotate), "Rotate Tool");
  builtin("scaleSuperContext", std::make_shared<TransformTool>(*this, "manipScale", Change::Scale),
          "Scale Tool");
  builtin("tumbleContext", std::make_shared<CameraTool>(*this, CameraTool::Gesture::Tumble),
          "Tumble Tool");
  builtin("trackContext", std::make_shared<CameraTool>(*this, CameraTool::Gesture::Track),
          "Track Tool");
  builtin("dollyContext", std::make_shared<CameraTool>(*this, CameraTool::Gesture::Dolly),
          "Dolly Tool");
  currentName_ = kSelect;
  current_ = find(kSelect);
}

ToolRegistry::~ToolRegistry() {
  timers_.remove(holdTimer_);
}

bool ToolRegistry::isBuiltin(std::string_view name) const {
  return std::find(builtins_.begin(), builtins_.end(), name) != builtins_.end();
}

std::shared_ptr<ToolContext> ToolRegistry::find(std::string_view name) const {
  const auto found = contexts_.find(name);
  return found == contexts_.end() ? nullptr : found->second;
}

std::vector<std::string> ToolRegistry::names() const {
  std::vector<std::string> names;
  for (const auto& [name, context] : contexts_) names.push_back(name);
  return names;
}

std::string ToolRegistry::uniqueName(const std::string& stem) const {
  for (int number = 1;; ++number) {
    std::string name = stem + std::to_string(number);
    if (!contexts_.contains(name)) return name;
  }
}

Result<void> ToolRegistry::add(const std::string& name, std::shared_ptr<ToolContext> context) {
  if (name.empty()) return fail("A tool needs a name.");
  if (contexts_.contains(name)) return fail("There is a tool named '{}' already.", name);
  contexts_.emplace(name, std::move(context));
  return {};
}

Result<void> ToolRegistry::remove(const std::string& name) {
  const auto found = contexts_.find(name);
  if (found == contexts_.end())
    return fail(ErrorKind::NotFound, "There is no tool named '{}'.", name);
  if (isBuiltin(name)) return fail("The tool '{}' can't be deleted.", name);
  if (currentName_ == name) HOST_TRY(setCurrent(std::string(kSelect)));
  if (gesture_ == found->second) gesture_ = nullptr;
  const std::shared_ptr<ToolContext> kept = found->second;
  contexts_.erase(found);
  return {};
}

Result<void> ToolRegistry::setCurrent(const std::string& name) {
  auto next = find(name);
  if (!next) return fail(ErrorKind::NotFound, "There is no tool named '{}'.", name);
  gesture_ = nullptr;
  timers_.remove(holdTimer_);
  const auto previous = std::exchange(current_, next);
  currentName_ = name;
  if (previous) previous->cleanup();
  // The tool that goes may have chosen another one.
  if (current_ == next) next->setup(last_);
  currentChanged();
  return {};
}

std::shared_ptr<ToolContext> ToolRegistry::receiver(const InputEvent& event) const {
  if (event.kind != InputKind::Press && gesture_) return gesture_;
  if (event.kind != InputKind::Press || !event.alt) return current_;
  switch (event.button) {
    case MouseButton::Middle:
      return find("trackContext");
    case MouseButton::Right:
      return find("dollyContext");
    default:
      return find("tumbleContext");
  }
}

void ToolRegistry::startHold(const InputEvent& event) {
  timers_.remove(holdTimer_);
  holdTimer_ = timers_.addOnce(kHoldDelay, [this, event](double, double) {
    InputEvent hold = event;
    hold.kind = InputKind::Hold;
    (void)handle(hold);
  });
}

bool ToolRegistry::handle(const InputEvent& event) {
  struct Handling {
    explicit Handling(int& depthIn) : depth(depthIn) { ++depth; }
    ~Handling() { --depth; }
    int& depth;
  };
  if (event.kind != InputKind::Hold) received(event);
  const Handling handling(handling_);
  return event.isMouse() ? handleMouse(event) : handleKey(event);
}

bool ToolRegistry::handleMouse(const InputEvent& event) {
  last_ = event;
  if (views.pointerAt) views.pointerAt(event);
  // Held here: the handler may remove the tool.
  const std::shared_ptr<ToolContext> tool = receiver(event);
  if (!tool) return false;
  switch (event.kind) {
    case InputKind::Press:
      gesture_ = tool;
      startHold(event);
      tool->press(event);
      return true;
    case InputKind::Drag:
      if (!gesture_) return false;
      timers_.remove(holdTimer_);
      tool->drag(event);
      return true;
    case InputKind::Release:
      timers_.remove(holdTimer_);
      if (!gesture_) return false;
      gesture_ = nullptr;
      tool->release(event);
      return true;
    case InputKind::Hold:
      if (!gesture_) return false;
      tool->hold(event);
      return true;
    case InputKind::Enter:
      tool->entered(event);
      return true;
    default:
      tool->moved(event);
      return true;
  }
}

bool ToolRegistry::handleKey(const InputEvent& event) {
  const std::shared_ptr<ToolContext> tool = current_;
  if (tool->key(event)) return true;
  if (event.kind == InputKind::KeyPress) {
    if (event.key == "Return" || event.key == "Enter") return tool->complete(), true;
    if (event.key == "Escape") return tool->abort(), true;
    if (event.key == "Delete" || event.key == "BackSpace") return tool->deleteAction(), true;
  }
  return unusedKey && unusedKey(event);
}

}  // namespace host::tools
