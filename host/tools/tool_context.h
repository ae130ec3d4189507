#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "host/base/result.h"
#include "host/tools/input_event.h"
#include "host/viewport/draw_list.h"
#include "host/viewport/scene_view.h"

namespace host::tools {

class ToolRegistry;

/// A tool as the user holds it: it gets the input of the views while it is the current one.
///
/// Handlers that a tool doesn't care about do nothing. A tool may make another current, or have
/// itself removed, from inside a handler.
class ToolContext {
 public:
  /// `className` is what kind of tool it is, the same for all contexts of that kind.
  explicit ToolContext(std::string className) : className_(std::move(className)) {}
  virtual ~ToolContext();
  ToolContext(const ToolContext&) = delete;
  ToolContext& operator=(const ToolContext&) = delete;

  [[nodiscard]] virtual std::string className() const { return className_; }

  virtual void setup(const InputEvent& event);  ///< has become current
  virtual void cleanup();                       ///< is current no more
  virtual void press(const InputEvent& event);
  virtual void drag(const InputEvent& event);
  virtual void release(const InputEvent& event);
  virtual void hold(
      const InputEvent& event);  ///< the button has been down for a while without a move
  virtual void moved(const InputEvent& event);  ///< no button is down
  virtual void entered(const InputEvent& event);
  /// Return, Delete, Backspace and Escape come as the actions below instead.
  /// @return whether the tool used the key
  virtual bool key(const InputEvent& event);
  virtual void deleteAction();
  virtual void complete();
  virtual void abort();
  /// Adds what the tool shows in a view.
  virtual void draw(const std::string& panel, viewport::DrawList& list);
  /// Marks what the tool points at on the meshes that a view shows.
  virtual void mark(const std::string& panel, viewport::SceneView& scene);

  // For recordings.
  /// The command that makes such a tool, given its name; empty for those that are always there.
  [[nodiscard]] virtual std::string maker() const { return {}; }
  /// The command lines that set a tool of that name as this one is set.
  [[nodiscard]] virtual std::vector<std::string> settings(const std::string& name);

  // What the interface shows of it.
  std::string title, help;
  std::array<std::string, 3> images;
  int cursor = 0;  ///< shape of the pointer: an id, 0 the default

 private:
  std::string className_;
};

}  // namespace host::tools
