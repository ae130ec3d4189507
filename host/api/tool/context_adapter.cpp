#include <maya/MEvent.h>
#include <maya/MUIDrawManager.h>

#include <exception>
#include <utility>

#include "host/api/command/args.h"
#include "host/api/tool/context_rep.h"
#include "host/api/view/view_access.h"
#include "host/base/messages.h"
#include "host/cmd/pending_edits.h"
#include "host/cmd/session.h"
#include "host/mel/interpreter.h"
#include "host/mel/literal.h"
#include "host/tools/select_tool.h"

namespace host::api {
namespace {

/// Calls into a plug-in's context; what it throws becomes a message.
template <class Function>
void fenced(const std::string& tool, const Function& call) {
  try {
    call();
  } catch (const std::exception& exception) {
    postMessage(MessageKind::Error,
                fmt::format("The tool '{}' threw an exception: {}", tool, exception.what()));
  } catch (...) {
    postMessage(MessageKind::Error, fmt::format("The tool '{}' threw an exception", tool));
  }
}

/// A draw manager and a frame context for one call, drawing into `list`.
struct DrawScope {
  DrawScope(const std::string& panel, viewport::DrawList& list)
      : rep(new DrawRep()),
        manager(Access::make<MHWRender::MUIDrawManager>(rep)),
        frame(Access::make<MHWRender::MFrameContext>(makeFrame(panel))) {
    rep->list = &list;
  }
  ~DrawScope() { rep->list = nullptr; }  // the plug-in may have copied the manager
  DrawScope(const DrawScope&) = delete;
  DrawScope& operator=(const DrawScope&) = delete;

  DrawRep* rep;
  MHWRender::MUIDrawManager manager;
  MHWRender::MFrameContext frame;
};

}  // namespace

ContextRep& contextRep(MPxContext& context) {
  return Access::writable<ContextRep>(context);
}

const ContextRep& contextRep(const MPxContext& context) {
  static const ContextRep empty;
  const auto* rep = Access::rep<ContextRep>(context);
  return rep ? *rep : empty;
}

MEvent toMEvent(const tools::InputEvent& event) {
  return Access::make<MEvent>(new EventRep(event));
}

ContextAdapter::ContextAdapter(std::unique_ptr<MPxContextCommand> command,
                               std::unique_ptr<MPxContext> context,
                               std::shared_ptr<const ContextClass> contextClass)
    : ToolContext(contextClass->commandName),
      command_(std::move(command)),
      context_(std::move(context)),
      contextClass_(std::move(contextClass)) {
  ContextRep& rep = contextRep(*context_);
  rep.tool = this;
  rep.contextClass = contextClass_;
  title = rep.title;
  help = rep.help;
  images = rep.images;
  cursor = rep.cursor;
}

ContextAdapter::~ContextAdapter() {
  contextRep(*context_).tool = nullptr;
  fenced(contextClass_->commandName, [this] {
    context_.reset();
    command_.reset();
  });
}

std::string ContextAdapter::className() const {
  MString name;
  fenced(contextClass_->commandName, [&] { context_->getClassName(name); });
  return name.length() ? toStd(name) : contextClass_->commandName;
}

void ContextAdapter::setup(const tools::InputEvent& event) {
  contextRep(*context_).panel = event.panel;
  MEvent given = toMEvent(event);
  fenced(title, [&] { context_->toolOnSetup(given); });
}

void ContextAdapter::cleanup() {
  feedback_ = {};
  fenced(title, [&] { context_->toolOffCleanup(); });
}

void ContextAdapter::deliver(Call call, const tools::InputEvent& event) {
  contextRep(*context_).panel = event.panel;
  viewport::DrawList drawn;
  fenced(title, [&] {
    MEvent given = toMEvent(event);
    DrawScope scope(event.panel, drawn);
    switch (call) {
      case Call::Press:
        (void)context_->doPress(given, scope.manager, scope.frame);
        break;
      case Call::Drag:
        (void)context_->doDrag(given, scope.manager, scope.frame);
        break;
      case Call::Release:
        (void)context_->doRelease(given, scope.manager, scope.frame);
        break;
      case Call::Hold:
        (void)context_->doHold(given, scope.manager, scope.frame);
        break;
      case Call::Moved:
        (void)context_->doPtrMoved(given, scope.manager, scope.frame);
        break;
    }
  });
  feedback_ = std::move(drawn);
  feedbackPanel_ = event.panel;
}

void ContextAdapter::press(const tools::InputEvent& event) {
  isGestureOn_ = true;
  deliver(Call::Press, event);
}
void ContextAdapter::drag(const tools::InputEvent& event) {
  if (isGestureOn_) deliver(Call::Drag, event);
}
void ContextAdapter::release(const tools::InputEvent& event) {
  if (!std::exchange(isGestureOn_, false)) return;
  deliver(Call::Release, event);
}
void ContextAdapter::hold(const tools::InputEvent& event) {
  if (isGestureOn_) deliver(Call::Hold, event);
}
void ContextAdapter::moved(const tools::InputEvent& event) {
  deliver(Call::Moved, event);
}

void ContextAdapter::entered(const tools::InputEvent& event) {
  contextRep(*context_).panel = event.panel;
  MEvent given = toMEvent(event);
  fenced(title, [&] { (void)context_->doEnterRegion(given); });
}

void ContextAdapter::deleteAction() {
  fenced(title, [&] { context_->deleteAction(); });
}
void ContextAdapter::complete() {
  fenced(title, [&] { context_->completeAction(); });
}
void ContextAdapter::abort() {
  bool& hasHostsAbort = contextRep(*context_).hasHostsAbort;
  hasHostsAbort = false;
  bool& isGivingUp = cmd::pendingEdits().isGivingUp;
  const bool wasGivingUp = std::exchange(isGivingUp, isGestureOn_);
  fenced(title, [&] { context_->abortAction(); });
  isGivingUp = wasGivingUp;
  // A gesture that is given up in its midst has no release. Contexts that have no abort of their
  // own end it as they end everything: they are left and taken in hand anew.
  if (!std::exchange(isGestureOn_, false) || !hasHostsAbort) return;
  cleanup();
  tools::InputEvent here;
  here.panel = contextRep(*context_).panel;
  setup(here);
}

std::vector<std::string> ContextAdapter::settings(const std::string& name) {
  std::vector<std::string> lines;
  const MessageCapture quiet;  // a flag that can't be queried is none of the settings
  auto& rep = Access::writable<ContextCommandRep>(*command_);
  const std::vector<SyntaxRep::Flag> flags = syntaxOf(rep.syntax).flags;
  for (const SyntaxRep::Flag& flag : flags) {
    const bool isHosts = flag.longName == "exists" || flag.longName == "name" ||
                         flag.longName.starts_with("image") || flag.longName == "query" ||
                         flag.longName == "edit";
    if (isHosts || flag.arguments.empty()) continue;
    rep.words = wrap({mel::Value("-q"), mel::Value("-" + flag.longName), mel::Value(name)});
    rep.result = mel::Value();
    MStatus status = MStatus::kFailure;
    fenced(title, [&] { status = command_->doQueryFlags(); });
    if (status != MStatus::kSuccess || rep.result.isNone()) continue;
    lines.push_back(fmt::format("{} -e -{} {} {}", contextClass_->commandName, flag.longName,
                                mel::flagWords(rep.result), name));
  }
  // Options that live in windows are the business of the tool's scripts.
  const std::string ask = contextClass_->commandName + "RecordedSettings";
  mel::Interpreter& interpreter = cmd::currentSession().interpreter();
  if (!interpreter.hasProcedure(ask)) return lines;
  const auto further = interpreter.callProcedure(ask, {});
  if (!further) return lines;
  for (std::string& line : further->toTexts()) lines.push_back(std::move(line));
  return lines;
}

void ContextAdapter::draw(const std::string& panel, viewport::DrawList& list) {
  const ContextRep& rep = contextRep(*context_);
  if (feedbackPanel_.empty() || feedbackPanel_ == panel) list.append(feedback_);
  if (rep.isMarqueeActive && (rep.panel.empty() || rep.panel == panel))
    tools::drawMarquee({static_cast<double>(rep.startX), static_cast<double>(rep.startY)},
                       {static_cast<double>(rep.lastX), static_cast<double>(rep.lastY)}, list);
  fenced(title, [&] {
    DrawScope scope(panel, list);
    (void)context_->drawFeedback(scope.manager, scope.frame);
  });
}

}  // namespace host::api
