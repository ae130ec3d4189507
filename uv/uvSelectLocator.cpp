#include "uv/uvSelectLocator.h"

#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>

namespace {

MStatus report(MStatus status, const char* text) {
  if (status != MS::kSuccess) status.perror(text);
  return status;
}

MObject createIndexArray(const char* longName, const char* shortName) {
  MFnGenericAttribute generic;
  MStatus created;
  MObject attribute = generic.create(longName, shortName, &created);
  if (created != MS::kSuccess) return MObject();
  generic.addDataAccept(MFnData::kIntArray);
  generic.setKeyable(false);
  generic.setStorable(false);
  return attribute;
}

MIntArray indicesIn(MDataBlock& block, const MObject& attribute) {
  MDataHandle handle = block.inputValue(attribute);
  const MObject data = handle.data();
  return data.hasFn(MFn::kIntArrayData) ? MFnIntArrayData(data).array() : MIntArray();
}

/// The places of components of a mesh, in the world.
class placedMesh {
 public:
  placedMesh(const MObject& data, const MMatrix& toWorldIn) : mesh(data), toWorld(toWorldIn) {
    MStatus status;
    points = mesh.getRawPoints(&status);
    if (status != MS::kSuccess) points = nullptr;
    vertexCount = points ? mesh.numVertices() : 0;
    edgeCount = points ? mesh.numEdges() : 0;
  }

  MPointArray vertices(const MIntArray& indices) const {
    MPointArray places(indices.length());
    unsigned int count = 0;
    for (unsigned int i = 0; i < indices.length(); ++i)
      if (hasVertex(indices[i])) places[count++] = place(indices[i]);
    places.setLength(count);
    return places;
  }
  MPointArray edges(const MIntArray& indices) const {
    MPointArray places(2 * indices.length());
    unsigned int count = 0;
    for (unsigned int i = 0; i < indices.length(); ++i) {
      int2 ends = {-1, -1};
      if (indices[i] < 0 || indices[i] >= edgeCount) continue;
      if (mesh.getEdgeVertices(indices[i], ends) != MS::kSuccess) continue;
      if (!hasVertex(ends[0]) || !hasVertex(ends[1])) continue;
      places[count++] = place(ends[0]);
      places[count++] = place(ends[1]);
    }
    places.setLength(count);
    return places;
  }

 private:
  bool hasVertex(int index) const { return index >= 0 && index < vertexCount; }
  MPoint place(int index) const {
    const float* at = points + 3 * static_cast<std::size_t>(index);
    return MPoint(at[0], at[1], at[2]) * toWorld;
  }

  MFnMesh mesh;
  MMatrix toWorld;
  const float* points = nullptr;
  int vertexCount = 0, edgeCount = 0;
};

/// Whether the mesh that feeds a locator shows somewhere: it may be hidden itself, by what is above
/// it or by its layer.
bool isMeshVisible(const MObject& locator) {
  MPlugArray sources;
  MPlug(locator, uvSelectLocator::inMesh).connectedTo(sources, true, false);
  if (sources.length() == 0) return false;
  MStatus status;
  MFnDagNode mesh(sources[0].node(), &status);
  if (status != MS::kSuccess) return true;  // a node of its history, which is no thing in the scene
  MDagPathArray paths;
  mesh.getAllPaths(paths);
  for (unsigned int i = 0; i < paths.length(); ++i)
    if (paths[i].isVisible()) return true;
  return false;
}

}  // namespace

const MTypeId uvSelectLocator::id(0x112F94);
MObject uvSelectLocator::inTransVisibile;
MObject uvSelectLocator::inMesh;
MObject uvSelectLocator::inWorldMatrix;
MObject uvSelectLocator::edgeArray;
MObject uvSelectLocator::ancorArray;
MObject uvSelectLocator::edgeSelectionArray;
MObject uvSelectLocator::vertSelectionArray;
MObject uvSelectLocator::outPosition;

uvSelectLocator::~uvSelectLocator() = default;

void* uvSelectLocator::creator() {
  return new uvSelectLocator;
}

MStatus uvSelectLocator::initialize() {
  MFnTypedAttribute typed;
  MFnMatrixAttribute matrix;
  MFnNumericAttribute numeric;
  MStatus created;
  inTransVisibile =
      numeric.create("mInTransVisibile", "mInTVis", MFnNumericData::kInt, 1.0, &created);
  if (report(created, "error creating transparent attribute!") != MS::kSuccess) return created;
  inMesh = typed.create("mInMesh", "mImsh", MFnData::kMesh);
  typed.setStorable(false);
  inWorldMatrix = matrix.create("mInWorldMatrix", "mIwmtx", MFnMatrixAttribute::kDouble);
  edgeArray = createIndexArray("edgeArray", "earr");
  ancorArray = createIndexArray("ancorArray", "aarr");
  edgeSelectionArray = createIndexArray("edgeSelectionArray", "esarr");
  vertSelectionArray = createIndexArray("vertSelectionArray", "vsarr");
  outPosition = numeric.create("mOutPosition", "mOpos", MFnNumericData::kInt, 1.0, &created);
  if (report(created, "error creating outPosition attribute!") != MS::kSuccess) return created;
  numeric.setWritable(false);
  numeric.setStorable(false);

  const MObject inputs[] = {inTransVisibile,   inMesh,     inWorldMatrix,
                            edgeArray,         ancorArray, edgeSelectionArray,
                            vertSelectionArray};
  MStatus status = report(addAttribute(outPosition), "error adding outPosition attribute!");
  for (const MObject& input : inputs) {
    if (status == MS::kSuccess)
      status = report(addAttribute(input), "error adding uv selection locator attribute!");
    if (status == MS::kSuccess)
      status = report(attributeAffects(input, outPosition),
                      "error setting uv selection locator attribute dependency!");
  }
  return status;
}

MStatus uvSelectLocator::compute(const MPlug& plug, MDataBlock& block) {
  if (plug != outPosition) return MS::kUnknownParameter;
  isTransformVisible = block.inputValue(inTransVisibile).asInt() != 0;
  const MObject mesh = block.inputValue(inMesh).asMesh();
  shown = meshMarks();
  if (!mesh.isNull()) {
    const placedMesh placed(mesh, block.inputValue(inWorldMatrix).asMatrix());
    shown.seams = placed.edges(indicesIn(block, edgeArray));
    shown.anchors = placed.vertices(indicesIn(block, ancorArray));
    shown.selectedEdges = placed.edges(indicesIn(block, edgeSelectionArray));
    shown.selectedVertices = placed.vertices(indicesIn(block, vertSelectionArray));
  }
  block.outputValue(outPosition).setInt(1);
  block.setClean(plug);
  return MS::kSuccess;
}

meshMarks uvSelectLocator::marksOf(const MObject& node) {
  MStatus status;
  const MFnDependencyNode nodeFn(node, &status);
  if (status != MS::kSuccess || nodeFn.typeId() != id) return {};
  (void)MPlug(node, outPosition).asInt();  // computes what it holds
  const auto* locator = static_cast<const uvSelectLocator*>(nodeFn.userNode());
  if (!locator || !locator->isTransformVisible || locator->shown.isEmpty()) return {};
  return isMeshVisible(node) ? locator->shown : meshMarks();
}

MBoundingBox uvSelectLocator::boundingBox() const {
  const MObject node = thisMObject();
  const meshMarks marks = marksOf(node);
  MBoundingBox box;
  if (marks.isEmpty()) return box;
  MDagPath path;
  box = marks.box();
  if (MDagPath::getAPathTo(node, path) == MS::kSuccess)
    box.transformUsing(path.inclusiveMatrixInverse());
  return box;
}

void uvSelectLocator::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle,
                           M3dView::DisplayStatus) {
  const meshMarks marks = marksOf(thisMObject());
  MMatrix toView;
  if (marks.isEmpty() || view.modelViewMatrix(toView) != MS::kSuccess) return;
  if (view.beginGL() != MS::kSuccess) return;
  drawMarksWithGl(marks, toView);
  view.endGL();
}
