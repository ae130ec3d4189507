#pragma once

/// One step of the host's undo queue that holds all that happens while it is open. It closes with
/// its owner at the latest, whatever ended the work; at most one of an owner's is open at a time.
class undoChunk {
 public:
  undoChunk() = default;
  undoChunk(const undoChunk&) = delete;
  undoChunk& operator=(const undoChunk&) = delete;
  ~undoChunk() { close(); }

  /// Opens the step; does nothing while it is open.
  void open();
  /// Closes it; does nothing while it is closed.
  void close();
  bool isOpen() const { return isChunkOpen; }

 private:
  bool isChunkOpen = false;
};
