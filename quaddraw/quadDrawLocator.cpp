#include "quaddraw/quadDrawLocator.h"

#include <maya/MDataBlock.h>
#include <maya/MFnData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>

#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>

#include <array>
#include <deque>

namespace {

constexpr float kPointSize = 8.0F;

using stipplePattern = std::array<unsigned char, 128>;

/// The halftone that quads are drawn with now.
const unsigned char* currentPattern = nullptr;

/// A checkerboard. Every node makes its own and none goes before the module does, since a view may
/// still be drawing with an earlier one.
void makePattern() {
  static std::deque<stipplePattern> patterns;
  stipplePattern& made = patterns.emplace_back();
  for (std::size_t i = 0; i < made.size(); ++i) made[i] = (i / 4) % 2 == 0 ? 0xAA : 0x55;
  currentPattern = made.data();
}

void addVertices(const MPointArray& points, float red, float green, float blue, float alpha) {
  for (unsigned int i = 0; i < points.length(); ++i) {
    glColor4f(red, green, blue, alpha);
    glVertex3f(static_cast<float>(points[i].x), static_cast<float>(points[i].y),
               static_cast<float>(points[i].z));
  }
}

void drawWithGl(const MPointArray& loose, const MPointArray& quad) {
  glPushAttrib(GL_CURRENT_BIT | GL_POINT_BIT);
  glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  glPointSize(kPointSize);
  glBegin(GL_POINTS);
  addVertices(loose, 0.0F, 1.0F, 0.0F, 1.0F);
  glEnd();
  glEnable(GL_BLEND);  // stays on for what the view draws after this
  if (quad.length() > 0) {
    glEnable(GL_POLYGON_STIPPLE);
    glPolygonStipple(currentPattern);
    glBegin(GL_POLYGON);
    addVertices(quad, 0.2F, 0.2F, 1.0F, 0.8F);
    glEnd();
  }
  glPopClientAttrib();
  glPopAttrib();
  glDisable(GL_POLYGON_STIPPLE);
}

}  // namespace

const MTypeId quadDrawLocator::id(0x112F91);
const char* const quadDrawLocator::kName = "qxModelingToolsDrawQuadLocator";
MObject quadDrawLocator::pointArray;
MObject quadDrawLocator::geoPointArray;
MObject quadDrawLocator::inWorldMatrix;
MObject quadDrawLocator::outPosition;

quadDrawLocator::quadDrawLocator() {
  makePattern();
}

quadDrawLocator::~quadDrawLocator() = default;

void* quadDrawLocator::creator() {
  return new quadDrawLocator;
}

MStatus quadDrawLocator::initialize() {
  MFnGenericAttribute generic;
  const struct {
    MObject& attribute;
    const char *name, *shortName;
  } arrays[] = {{pointArray, "pointArray", "parr"}, {geoPointArray, "geoPointArray", "geoparr"}};
  for (const auto& array : arrays) {
    MStatus created;
    array.attribute = generic.create(array.name, array.shortName, &created);
    if (created != MS::kSuccess) return created;
    generic.addDataAccept(MFnData::kPointArray);
    generic.setKeyable(false);
    generic.setCached(false);
  }
  MFnMatrixAttribute matrix;
  inWorldMatrix = matrix.create("inWorldMatrix", "iwmtx", MFnMatrixAttribute::kDouble);
  MFnNumericAttribute numeric;
  outPosition = numeric.create("outPosition", "opos", MFnNumericData::kInt, 1.0);
  numeric.setKeyable(false);
  numeric.setStorable(false);

  MStatus status;
  for (const MObject& attribute : {pointArray, geoPointArray, inWorldMatrix, outPosition})
    if ((status = addAttribute(attribute)) != MS::kSuccess) return status;
  for (const MObject& attribute : {pointArray, geoPointArray})
    if ((status = attributeAffects(attribute, outPosition)) != MS::kSuccess) return status;
  return MS::kSuccess;
}

MStatus quadDrawLocator::compute(const MPlug& plug, MDataBlock& block) {
  block.setClean(plug);  // it only tells that something to draw has changed
  return MS::kSuccess;
}

MPointArray quadDrawLocator::pointsAt(const MPlug& plug) {
  const MObject data = plug.asMObject();
  return data.hasFn(MFn::kPointArrayData) ? MFnPointArrayData(data).array() : MPointArray();
}

void quadDrawLocator::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle,
                           M3dView::DisplayStatus) {
  const MObject node = thisMObject();
  const MPointArray loose = pointsAt(MPlug(node, pointArray));
  const MPointArray quad = pointsAt(MPlug(node, geoPointArray));
  if (loose.length() == 0 && quad.length() == 0) return;
  if (view.beginGL() != MS::kSuccess) return;
  drawWithGl(loose, quad);
  view.endGL();
}
