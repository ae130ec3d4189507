#include "uv/hoverLocator.h"

#include <maya/MFnDependencyNode.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>
#include <maya/MTypeId.h>

namespace {

const MTypeId kDrawLocatorId(0x112F8D);
constexpr const char* kName = "qxUVSelectHoverLocator";

}  // namespace

hoverLocator::hoverLocator() : locator(kDrawLocatorId, kName, "error creating draw locator node") {}

void hoverLocator::create() {
  if (locator.takeOver()) locator.remove();  // what an earlier session of the tool has left
  shown.clear();
  locator.create();
}

void hoverLocator::forget() {
  locator.forget();
  shown.clear();
}

bool hoverLocator::show(const MPointArray& corners) {
  if (isSamePoints(corners, shown) && (locator.isThere() || corners.length() == 0)) return false;
  if (!locator.isThere()) create();
  if (!locator.isThere()) return false;
  MFnDependencyNode(locator.node())
      .findPlug("componentPointArray", false)
      .setMObject(MFnPointArrayData().create(corners));
  shown = corners;
  return true;
}
