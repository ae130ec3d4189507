#pragma once

#include <vector>

#include "host/scene/document.h"

namespace host::builtins {

/// Remembers in which order components were selected, which a selection's own sets don't. Costs
/// nothing while it is not tracking.
class SelectionOrder final : public scene::DocumentObserver {
 public:
  SelectionOrder() = default;
  ~SelectionOrder() override;
  SelectionOrder(const SelectionOrder&) = delete;
  SelectionOrder& operator=(const SelectionOrder&) = delete;

  /// Begins with what is selected, in its own order; null ends it and forgets. The document
  /// outlives the tracking.
  void track(scene::Document* document);
  [[nodiscard]] bool isTracking() const { return document_ != nullptr; }
  /// The order of what is about to be selected at once, one list a word of the command.
  void announce(const std::vector<scene::SelectionList>& words);
  /// The selection with every component an item of its own, in order of selection.
  [[nodiscard]] std::vector<scene::SelectionItem> inOrder(const scene::SelectionList& list) const;

 private:
  void selectionChanged() override;

  scene::Document* document_ = nullptr;
  std::vector<scene::SelectionItem> order_, announced_;
};

}  // namespace host::builtins
