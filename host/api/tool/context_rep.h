#pragma once

#include <maya/MArgList.h>
#include <maya/MFnPlugin.h>
#include <maya/MPxContext.h>
#include <maya/MPxContextCommand.h>
#include <maya/MSyntax.h>

#include <memory>
#include <string>

#include "host/api/core/access.h"
#include "host/mel/value.h"
#include "host/tools/tool_context.h"

namespace host::api {

/// A context command as a plug-in registered it, with its tool command when it has one.
struct ContextClass {
  std::string commandName, toolCommandName;
  MCreatorFunction creator = nullptr, toolCreator = nullptr;
  MSyntax toolSyntax;
  bool hasToolSyntax = false;
};

/// What the host keeps with a plug-in's context object.
struct ContextRep final : SharedRep {
  tools::ToolContext* tool = nullptr;  ///< set while the context has a name
  std::string title, help;
  std::array<std::string, 3> images;
  int cursor = 0;
  std::shared_ptr<const ContextClass> contextClass;
  // The marquee, and what a selection context remembers of a gesture.
  short startX = 0, startY = 0, lastX = 0, lastY = 0;
  bool isMarqueeActive = false, isSelecting = false;
  bool hasHostsAbort = false;  ///< the last abort reached the host's own
  std::string panel;
};

/// What the host keeps with a plug-in's context command object; there is one for each context that
/// it made.
struct ContextCommandRep final : SharedRep {
  MSyntax syntax;
  MArgList words;
  mel::Value result;
};

/// A plug-in's context among the host's tools. Owns the plug-in's objects.
class ContextAdapter final : public tools::ToolContext {
 public:
  ContextAdapter(std::unique_ptr<MPxContextCommand> command, std::unique_ptr<MPxContext> context,
                 std::shared_ptr<const ContextClass> contextClass);
  ~ContextAdapter() override;

  [[nodiscard]] std::string className() const override;
  void setup(const tools::InputEvent& event) override;
  void cleanup() override;
  void press(const tools::InputEvent& event) override;
  void drag(const tools::InputEvent& event) override;
  void release(const tools::InputEvent& event) override;
  void hold(const tools::InputEvent& event) override;
  void moved(const tools::InputEvent& event) override;
  void entered(const tools::InputEvent& event) override;
  void deleteAction() override;
  void complete() override;
  void abort() override;
  void draw(const std::string& panel, viewport::DrawList& list) override;

  [[nodiscard]] std::string maker() const override { return contextClass_->commandName; }
  /// What querying each of the plug-in's own flags gives.
  [[nodiscard]] std::vector<std::string> settings(const std::string& name) override;

  [[nodiscard]] MPxContextCommand& command() { return *command_; }
  [[nodiscard]] MPxContext& context() { return *context_; }
  [[nodiscard]] const ContextClass& contextClass() const { return *contextClass_; }

 private:
  enum class Call { Press, Drag, Release, Hold, Moved };
  void deliver(Call call, const tools::InputEvent& event);

  std::unique_ptr<MPxContextCommand> command_;
  std::unique_ptr<MPxContext> context_;
  std::shared_ptr<const ContextClass> contextClass_;
  viewport::DrawList feedback_;  ///< what the last event drew, shown until the next
  std::string feedbackPanel_;
  bool isGestureOn_ = false;  ///< between a press and its release, unless it was given up
};

/// The representation behind a context, made on first use; it is never shared.
[[nodiscard]] ContextRep& contextRep(MPxContext& context);
[[nodiscard]] const ContextRep& contextRep(const MPxContext& context);

/// An event as plug-ins see it.
[[nodiscard]] MEvent toMEvent(const tools::InputEvent& event);

}  // namespace host::api
