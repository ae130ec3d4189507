#include <maya/MGlobal.h>
#include <maya/MPxDrawOverride.h>

namespace MHWRender {

MPxDrawOverride::MPxDrawOverride(const MObject& object, GeometryDrawOverrideCb callback,
                                 bool isAlwaysDirty)
    : object_(object), callback_(callback), isAlwaysDirty_(isAlwaysDirty) {}
MPxDrawOverride::~MPxDrawOverride() = default;

DrawAPI MPxDrawOverride::supportedDrawAPIs() const {
  return kOpenGL;
}
bool MPxDrawOverride::hasUIDrawables() const {
  return false;
}
void MPxDrawOverride::addUIDrawables(const MDagPath&, MUIDrawManager&, const MFrameContext&,
                                     const MUserData*) {}
bool MPxDrawOverride::isBounded(const MDagPath&, const MDagPath&) const {
  return true;
}
MBoundingBox MPxDrawOverride::boundingBox(const MDagPath&, const MDagPath&) const {
  return {};
}
MMatrix MPxDrawOverride::transform(const MDagPath& objPath, const MDagPath&) const {
  return objPath.inclusiveMatrix();
}
bool MPxDrawOverride::disableInternalBoundingBoxDraw() const {
  return false;
}
bool MPxDrawOverride::excludedFromPostEffects() const {
  return true;
}
bool MPxDrawOverride::isTransparent() const {
  return false;
}
bool MPxDrawOverride::traceCallSequence() const {
  return false;
}
void MPxDrawOverride::handleTraceMessage(const MString& message) const {
  MGlobal::displayInfo(message);
}

}  // namespace MHWRender
