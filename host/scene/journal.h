#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "host/dg/change.h"

namespace host::scene {

/// A run of edits in the order in which they happened.
class ChangeSet {
 public:
  void append(std::unique_ptr<dg::Change> change) { changes_.push_back(std::move(change)); }
  /// Moves the other's records to the end of this one.
  void append(ChangeSet other) {
    if (changes_.empty()) {
      changes_ = std::move(other.changes_);
      return;
    }
    for (auto& change : other.changes_) changes_.push_back(std::move(change));
  }
  /// Takes all back, last first, or does all again. When a record no longer fits, what was replayed
  /// until then is put back as it was, and the error says what did not fit.
  Result<void> undo();
  Result<void> redo();
  void visitNodes(const dg::Change::VisitNode& visit) const;
  [[nodiscard]] bool isEmpty() const { return changes_.empty(); }
  [[nodiscard]] std::size_t size() const { return changes_.size(); }
  [[nodiscard]] std::size_t bytes() const;

 private:
  std::vector<std::unique_ptr<dg::Change>> changes_;
};

/// A run of edits as one record.
[[nodiscard]] std::unique_ptr<dg::Change> makeChange(ChangeSet changes);

/// Collects the records of edits while somebody has a recording open; nested recordings suspend the
/// outer one.
class Journal final : public dg::ChangeRecorder {
 public:
  [[nodiscard]] bool isRecording() const override {
    return !open_.empty() && open_.back() != nullptr;
  }
  void record(std::unique_ptr<dg::Change> change) override;

  /// While it lives, edits go to `target`; with a null target nothing is recorded.
  class Scope {
   public:
    Scope(Journal& journal, ChangeSet* target) : journal_(journal) {
      journal_.open_.push_back(target);
    }
    ~Scope() { journal_.open_.pop_back(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Journal& journal_;
  };

 private:
  std::vector<ChangeSet*> open_;
};

}  // namespace host::scene
