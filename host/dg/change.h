#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "host/base/result.h"

namespace host::dg {

class Node;

/// One recorded edit of the document that can be reverted and done again, exactly.
///
/// Edits that nobody recorded may have come in between. Each direction therefore looks first at
/// whether the record still fits; one that does not changes nothing and says why. One that does
/// remembers what it really found, so that the other direction gives back the state before it, bit
/// for bit, whatever that was.
class Change {
 public:
  virtual ~Change() = default;
  virtual Result<void> undo() = 0;
  virtual Result<void> redo() = 0;
  /// The nodes that the record can't do without.
  using VisitNode = std::function<void(const Node&)>;
  virtual void visitNodes(const VisitNode& /*visit*/) const {}
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
