#include "host/edits/gesture.h"

#include <utility>

namespace host::edits {

void Gesture::State::takeBack() {
  const scene::Journal::Scope unrecorded(document.journal(), nullptr);
  scene::ChangeSet preview = std::exchange(changes, {});
  preview.undo();
}

void Gesture::State::finish() {
  // What the edit itself runs belongs to it.
  if (isAtWork || !std::exchange(isActive, false)) return;
  keeper.setPending({});
  if (scene::ChangeSet step = std::exchange(changes, {}); !step.isEmpty())
    keeper.add(name, std::move(step));
}

Gesture::Gesture(scene::Document& document, StepKeeper& keeper, std::string name)
    : state_(std::make_shared<State>(document, keeper, std::move(name))) {
  keeper.setPending([state = state_] { state->finish(); });
}

Gesture::~Gesture() {
  cancel();
}

Result<void> Gesture::preview(const std::function<Result<void>()>& edit) {
  State& state = *state_;
  if (!state.isActive || state.isAtWork) return {};
  state.isAtWork = true;
  state.takeBack();
  Result<void> done;
  {
    const scene::Journal::Scope recording(state.document.journal(), &state.changes);
    done = state.keeper.collect(state.changes, edit);
  }
  if (!done) state.takeBack();
  state.isAtWork = false;
  return done;
}

void Gesture::commit() {
  const std::shared_ptr<State> state = state_;
  state->finish();
}

void Gesture::cancel() {
  const std::shared_ptr<State> state = state_;
  if (!state->isActive || state->isAtWork) return;
  state->isActive = false;
  state->keeper.setPending({});
  state->takeBack();
}

}  // namespace host::edits
