#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace host::dg {

/// One recorded edit of the document that can be reverted and done again, exactly.
class Change {
 public:
  virtual ~Change() = default;
  virtual void undo() = 0;
  virtual void redo() = 0;
  /// Memory this record alone keeps alive, in bytes (an estimate, shared arrays not counted).
  [[nodiscard]] virtual std::size_t bytes() const { return sizeof(*this); }
};

/// Takes the records of edits while they happen. Edits made with no recorder, or while it is not
/// recording, are not undoable.
class ChangeRecorder {
 public:
  virtual ~ChangeRecorder() = default;
  [[nodiscard]] virtual bool isRecording() const = 0;
  virtual void record(std::unique_ptr<Change> change) = 0;
};

}  // namespace host::dg
