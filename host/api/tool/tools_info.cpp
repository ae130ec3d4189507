#include <maya/MToolsInfo.h>

#include <set>

#include "host/cmd/session.h"
#include "host/workspace/workspace.h"

namespace {

struct DirtyTools {
  std::set<const MPxContext*> all;
};
std::set<const MPxContext*>& dirtyTools() {
  return host::workspace::workspaceOf(host::cmd::currentSession()).kept<DirtyTools>().all;
}

}  // namespace

void MToolsInfo::setDirtyFlag(const MPxContext& context) {
  dirtyTools().insert(&context);
}
void MToolsInfo::resetDirtyFlag(const MPxContext& context) {
  dirtyTools().erase(&context);
}
bool MToolsInfo::isDirty(const MPxContext& context) {
  return dirtyTools().contains(&context);
}
