#include "shared/tool/undoChunk.h"

#include <maya/MGlobal.h>

void undoChunk::open() {
  if (isChunkOpen) return;
  isChunkOpen = true;
  MGlobal::executeCommand("undoInfo -ock", false, false);
}

void undoChunk::close() {
  if (!isChunkOpen) return;
  isChunkOpen = false;
  MGlobal::executeCommand("undoInfo -cck", false, false);
}
