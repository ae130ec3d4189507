#include <maya/MPxLocatorNode.h>

#include "host/api/core/access.h"
#include "host/cmd/session.h"

namespace {

/// What the interface colours of a locator are without an override, by display state.
MColor stateColor(M3dView::DisplayStatus status) {
  switch (status) {
    case M3dView::kLead:
      return MColor(0.26f, 1.0f, 0.64f);
    case M3dView::kActive:
      return MColor(1.0f, 1.0f, 1.0f);
    case M3dView::kTemplate:
      return MColor(0.47f, 0.47f, 0.47f);
    case M3dView::kHilite:
      return MColor(0.38f, 0.86f, 1.0f);
    default:
      return MColor(0.0f, 0.02f, 0.38f);
  }
}

}  // namespace

MPxLocatorNode::MPxLocatorNode() = default;
MPxLocatorNode::~MPxLocatorNode() = default;
void MPxLocatorNode::draw(M3dView&, const MDagPath&, M3dView::DisplayStyle,
                          M3dView::DisplayStatus) {}
bool MPxLocatorNode::isBounded() const {
  return false;
}
MBoundingBox MPxLocatorNode::boundingBox() const {
  return {};
}
bool MPxLocatorNode::isTransparent() const {
  return false;
}
bool MPxLocatorNode::drawLast() const {
  return false;
}
bool MPxLocatorNode::excludeAsLocator() const {
  return true;
}
bool MPxLocatorNode::closestPoint(const MPoint&, const MVector&, MPoint&) const {
  return false;
}

unsigned int MPxLocatorNode::color(M3dView::DisplayStatus displayStatus) {
  const MObject object = thisMObject();
  host::dg::Node* node = host::api::nodeOf(object);
  if (!node || (displayStatus != M3dView::kDormant && displayStatus != M3dView::kNoStatus))
    return 0;
  const auto index = node->graph().get(node->plug("overrideColor"));
  const auto* number = index ? std::get_if<std::int64_t>(&*index) : nullptr;
  return number ? static_cast<unsigned int>(*number) : 0;
}
MColor MPxLocatorNode::colorRGB(M3dView::DisplayStatus displayStatus) {
  return stateColor(displayStatus);
}
