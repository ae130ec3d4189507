#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/scene/document.h"

namespace host::edits {

/// Where a gesture's edits go; the owner of undo implements it.
class StepKeeper {
 public:
  virtual ~StepKeeper() = default;
  /// Runs `edit` so that whatever runs inside it, commands included, records into `target`.
  virtual Result<void> collect(scene::ChangeSet& target,
                               const std::function<Result<void>()>& edit) = 0;
  /// Takes a finished step.
  virtual void add(const std::string& name, scene::ChangeSet step) = 0;
  /// `finish` must be called before another step is begun, taken back or forgotten; empty: never
  /// mind.
  virtual void setPending(std::function<void()> finish) = 0;
};

/// One edit under a person's hand: while the pointer moves it is made again and again from where
/// it began, and in the end it is one step of undo or nothing.
///
/// When other code makes a step meanwhile, the gesture is committed as it stands and is over, so
/// that steps are in the order of what happened; whoever drags begins another one. One is in
/// progress at a time. A preview costs what the edit and taking it back cost.
class Gesture {
 public:
  /// Begins; nothing has changed yet. The document and the keeper must outlive it.
  Gesture(scene::Document& document, StepKeeper& keeper, std::string name);
  ~Gesture();  ///< cancels what is in progress
  Gesture(const Gesture&) = delete;
  Gesture& operator=(const Gesture&) = delete;

  /// Whether it goes on: neither committed nor cancelled, by us or by other code.
  [[nodiscard]] bool isActive() const { return state_->isActive; }
  /// Takes back the preview before and makes `edit` instead. After an error nothing is previewed;
  /// the gesture goes on. Without effect once it is over.
  Result<void> preview(const std::function<Result<void>()>& edit);
  /// Hands the last preview over as one step; none is made of one that changed nothing.
  void commit();
  /// Restores the document, to the bit.
  void cancel();

 private:
  struct State {
    State(scene::Document& documentIn, StepKeeper& keeperIn, std::string nameIn)
        : document(documentIn), keeper(keeperIn), name(std::move(nameIn)) {}
    void takeBack();
    void finish();

    scene::Document& document;
    StepKeeper& keeper;
    std::string name;
    scene::ChangeSet changes;
    bool isActive = true, isAtWork = false;
  };
  std::shared_ptr<State> state_;  ///< shared with the keeper, which ends it for other code
};

}  // namespace host::edits
