#include <maya/MAnimUtil.h>
#include <maya/MFnDependencyNode.h>

#include "host/api/core/access.h"
#include "host/edits/keys.h"

using namespace host;
using api::setStatus;

namespace {

dg::Node* curveAt(const MPlug& plug) {
  const dg::Plug own = api::plugOf(plug);
  return own ? edits::curveOf(api::document(), own) : nullptr;
}

/// Adds the plugs that are driven at or below one.
void collect(const MPlug& plug, MPlugArray& found) {
  if (curveAt(plug)) found.append(plug);
  if (plug.isArray())
    for (unsigned int i = 0; i < plug.numElements(); ++i)
      collect(plug.elementByPhysicalIndex(i), found);
  else if (plug.isCompound())
    for (unsigned int i = 0; i < plug.numChildren(); ++i) collect(plug.child(i), found);
}

bool collect(const MObject& node, MPlugArray& found, MStatus* status) {
  const dg::Node* known = api::nodeOf(node);
  setStatus(status, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (!known) return false;
  MPlugArray connected;
  (void)MFnDependencyNode(node).getConnections(connected);
  const unsigned int before = found.length();
  for (const MPlug& plug : connected)
    if (curveAt(plug)) found.append(plug);
  return found.length() > before;
}

bool collect(const MDagPath& path, bool checkParent, MPlugArray& found, MStatus* status) {
  bool any = collect(path.node(), found, status);
  MDagPath above = path;
  while (checkParent && above.length() > 1 && above.pop())
    any = collect(above.node(), found, nullptr) || any;
  return any;
}

bool collect(const MSelectionList& list, bool checkParent, MPlugArray& found, MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  bool any = false;
  for (unsigned int i = 0; i < list.length(); ++i) {
    MDagPath path;
    MObject node;
    if (list.getDagPath(i, path))
      any = collect(path, checkParent, found, nullptr) || any;
    else if (list.getDependNode(i, node))
      any = collect(node, found, nullptr) || any;
  }
  return any;
}

}  // namespace

bool MAnimUtil::isAnimated(const MObject& node, bool, MStatus* status) {
  MPlugArray found;
  return collect(node, found, status);
}
bool MAnimUtil::isAnimated(const MDagPath& path, bool checkParent, MStatus* status) {
  MPlugArray found;
  return collect(path, checkParent, found, status);
}
bool MAnimUtil::isAnimated(const MPlug& plug, bool checkParent, MStatus* status) {
  setStatus(status, api::plugOf(plug) ? MStatus::kSuccess : MStatus::kInvalidParameter);
  MPlugArray found;
  collect(plug, found);
  if (found.length() > 0) return true;
  return checkParent && plug.isChild() && curveAt(plug.parent());
}
bool MAnimUtil::isAnimated(const MSelectionList& list, bool checkParent, MStatus* status) {
  MPlugArray found;
  return collect(list, checkParent, found, status);
}
bool MAnimUtil::findAnimatedPlugs(const MObject& node, MPlugArray& animatedPlugs, bool,
                                  MStatus* status) {
  animatedPlugs.clear();
  return collect(node, animatedPlugs, status);
}
bool MAnimUtil::findAnimatedPlugs(const MDagPath& path, MPlugArray& animatedPlugs, bool checkParent,
                                  MStatus* status) {
  animatedPlugs.clear();
  return collect(path, checkParent, animatedPlugs, status);
}
bool MAnimUtil::findAnimatedPlugs(const MSelectionList& list, MPlugArray& animatedPlugs,
                                  bool checkParent, MStatus* status) {
  animatedPlugs.clear();
  return collect(list, checkParent, animatedPlugs, status);
}
bool MAnimUtil::findAnimation(const MPlug& plug, MObjectArray& animation, MStatus* status) {
  animation.clear();
  setStatus(status, api::plugOf(plug) ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (dg::Node* curve = curveAt(plug)) animation.append(api::wrap(curve));
  return animation.length() > 0;
}
