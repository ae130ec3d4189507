#include "host/window/person.h"

#include <QTimer>
#include <utility>

#include "host/base/cancel.h"
#include "host/base/messages.h"
#include "host/builtins/ui/control_values.h"
#include "host/cmd/loop.h"
#include "host/workspace/workspace.h"

namespace host::window {

Person::Person(cmd::Session& session)
    : session_(session), hand_([this](const tools::InputEvent& event) {
        session_.runByHand([&] { (void)workspace::workspaceOf(session_).toolbox.handle(event); });
        if (event.kind == tools::InputKind::Move || event.kind == tools::InputKind::Enter) return;
        // The panels are read when the hand lets go: they cost with the scene.
        lookSoon(event.kind == tools::InputKind::Drag ? kViews : kAll);
      }) {
  connections_.push_back(session_.lineRun.connect([this](std::string_view) { lookSoon(); }));
  connections_.push_back(session_.loop().drawing.connect([this] { lookSoon(kViews); }));
  connections_.push_back(workspace::workspaceOf(session_).controls.changed.connect(
      [this](const ui::Control&, ui::ControlChange) { lookSoon(kPanels); }));
}

bool Person::edit(std::string_view name, const std::function<Result<void>()>& edits) {
  clearCancel();
  const auto done = session_.dispatcher().recordStep(name, edits);
  if (!done) postMessage(MessageKind::Error, done.error().message);
  lookSoon();
  return done.has_value();
}

void Person::runCallbacks(const std::vector<std::string>& scripts) {
  cmd::Context context{session_, session_.document()};
  builtins::runCallbacks(context, scripts);
  lookSoon();
}

void Person::runNamed(const std::string& command) {
  const auto& commands = workspace::workspaceOf(session_).hotkeys.commands;
  if (const auto found = commands.find(command); found != commands.end())
    (void)session_.executeLine(found->second.line);
  lookSoon();
}

void Person::letGo() {
  if (hand_.isDown()) (void)hand_.release(hand_.state().position);
}

void Person::undo() {
  const std::string name = session_.undo().undoName();
  const auto done = session_.dispatcher().undo();
  postMessage(done ? MessageKind::Info : MessageKind::Warning,
              done ? "Undo: " + name : done.error().message);
  if (done) session_.scriptJobs().triggerEvent("Undo");
  lookSoon();
}

void Person::redo() {
  const std::string name = session_.undo().redoName();
  const auto done = session_.dispatcher().redo();
  postMessage(done ? MessageKind::Info : MessageKind::Warning,
              done ? "Redo: " + name : done.error().message);
  if (done) session_.scriptJobs().triggerEvent("Redo");
  lookSoon();
}

void Person::lookSoon(Parts parts) {
  const bool isPlanned = looking_ != 0;
  looking_ |= parts;
  if (isPlanned) return;
  QTimer::singleShot(0, [this, isAlive = std::weak_ptr<bool>(isAlive_)] {
    if (isAlive.expired()) return;
    const auto now = static_cast<Parts>(std::exchange(looking_, std::uint8_t{0}));
    ++lookCount_;
    looked(now);
  });
}

}  // namespace host::window
