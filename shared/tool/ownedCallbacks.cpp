#include "shared/tool/ownedCallbacks.h"

bool ownedCallbacks::add(MCallbackId id) {
  if (id == 0) return false;
  ids.push_back(id);
  return true;
}

void ownedCallbacks::removeAll() {
  // Emptied first: a callback that ends its owner while it runs comes here a second time.
  std::vector<MCallbackId> going;
  going.swap(ids);
  for (const MCallbackId id : going) MMessage::removeCallback(id);
}
