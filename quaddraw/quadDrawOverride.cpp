#include "quaddraw/quadDrawOverride.h"

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPlug.h>
#include <maya/MUIDrawManager.h>

#include "quaddraw/quadDrawLocator.h"

namespace {

constexpr double kBoxScale = 1.0;
constexpr float kPointSize = 8.0F;

/// An array of the node; empty, after the message, for a node that does not have it.
MPointArray readArray(const MFnDependencyNode& node, const char* name, const char* missing) {
  MStatus found;
  const MPlug plug = node.findPlug(name, false, &found);
  if (found == MS::kSuccess) return quadDrawLocator::pointsAt(plug);
  MGlobal::displayError(missing);
  return MPointArray();
}

}  // namespace

quadDrawLocatorData::~quadDrawLocatorData() = default;

MPointArray quadDrawLocatorData::triangleList(const MPointArray& quad) {
  MPointArray list;
  if (quad.length() != 4) return list;
  for (const unsigned int corner : {0U, 1U, 2U, 0U, 2U, 3U, 0U, 2U}) list.append(quad[corner]);
  return list;
}

quadDrawLocatorDrawOverride::quadDrawLocatorDrawOverride(const MObject& node)
    : MPxDrawOverride(node, nullptr) {}
quadDrawLocatorDrawOverride::~quadDrawLocatorDrawOverride() = default;

MHWRender::MPxDrawOverride* quadDrawLocatorDrawOverride::creator(const MObject& node) {
  return new quadDrawLocatorDrawOverride(node);
}

MHWRender::DrawAPI quadDrawLocatorDrawOverride::supportedDrawAPIs() const {
  return static_cast<MHWRender::DrawAPI>(MHWRender::kOpenGL | MHWRender::kDirectX11);
}

MBoundingBox quadDrawLocatorDrawOverride::boundingBox(const MDagPath&, const MDagPath&) const {
  return MBoundingBox(MPoint(-0.17 * kBoxScale, 0.0, -0.7 * kBoxScale),
                      MPoint(0.17 * kBoxScale, 0.0, 0.3 * kBoxScale));
}

MUserData* quadDrawLocatorDrawOverride::prepareForDraw(const MDagPath& path, const MDagPath&,
                                                       const MHWRender::MFrameContext&,
                                                       MUserData* old) {
  auto* data = dynamic_cast<quadDrawLocatorData*>(old);
  if (!data) data = new quadDrawLocatorData;
  const MFnDependencyNode node(path.node());
  data->points = readArray(node, "parr", "cannot find parr attribute");
  const MPointArray quad = readArray(node, "geoparr", "cannot find geoparr attribute");
  data->triangles = quadDrawLocatorData::triangleList(quad);
  data->showPoints = data->points.length() > 0;
  data->showQuad = data->triangles.length() > 0;
  data->color = MHWRender::MGeometryUtilities::wireframeColor(path);
  return data;
}

void quadDrawLocatorDrawOverride::addUIDrawables(const MDagPath&,
                                                 MHWRender::MUIDrawManager& manager,
                                                 const MHWRender::MFrameContext&,
                                                 const MUserData* data) {
  const auto* prepared = dynamic_cast<const quadDrawLocatorData*>(data);
  if (!prepared || (!prepared->showPoints && !prepared->showQuad)) return;
  manager.beginDrawable();
  manager.beginDrawInXray();  // a quad's middle lies below the surface that its corners lie on
  manager.setPointSize(kPointSize);
  manager.setColor(MColor(0.0F, 1.0F, 0.0F, 1.0F));
  for (unsigned int i = 0; i < prepared->points.length(); ++i) manager.point(prepared->points[i]);
  if (prepared->triangles.length() > 0) {
    manager.setColor(MColor(0.2F, 0.2F, 1.0F, 0.8F));
    manager.setPaintStyle(MHWRender::MUIDrawManager::kStippled);  // the legacy halftone
    manager.mesh(MHWRender::MUIDrawManager::kTriangles, prepared->triangles);
    manager.setPaintStyle(MHWRender::MUIDrawManager::kFlat);
  }
  manager.endDrawInXray();
  manager.endDrawable();
}
