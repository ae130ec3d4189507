#include <maya/MDGModifier.h>
#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <initializer_list>
#include <vector>

#include "shared/mesh/mathHelper.h"
#include "shared/mesh/shownMesh.h"
#include "shared/mesh/vertexTweaks.h"

namespace {

/// A node's plugs in a chain of meshes.
struct chainPlugs {
  MPlug input, output;
  bool isThere = false;

  chainPlugs() = default;
  chainPlugs(const MObject& node, const char* inputName, const char* outputName) {
    MStatus status;
    const MFnDependencyNode nodeFn(node, &status);
    if (status != MS::kSuccess) return;
    input = nodeFn.findPlug(inputName, &status);
    if (status != MS::kSuccess) return;
    output = nodeFn.findPlug(outputName, &status);
    isThere = status == MS::kSuccess;
  }
};

chainPlugs plugsOf(const MObject& node) {
  return chainPlugs(node, "inMesh", "outMesh");
}
chainPlugs plugsOfTweak(const MObject& node) {
  return chainPlugs(node, "inputPolymesh", "output");
}

/// The plug that drives another; a null plug when none does.
MPlug driverOf(const MPlug& plug) {
  MPlugArray drivers;
  plug.connectedTo(drivers, true, false);
  return drivers.length() > 0 ? drivers[0] : MPlug();
}

MStatus meshShape(const MDagPath& path, MDagPath& shape) {
  if (!path.isValid()) return MS::kFailure;
  shape = path;
  return extendToShownMesh(shape);
}

/// Whether a shape's mesh comes from a node, over however many others.
bool isInHistory(const MObject& node, const MPlug& shapeInput) {
  MPlug root = shapeInput;
  MStatus status;
  for (MItDependencyGraph upstream(root, MFn::kInvalid, MItDependencyGraph::kUpstream,
                                   MItDependencyGraph::kDepthFirst, MItDependencyGraph::kNodeLevel,
                                   &status);
       status && !upstream.isDone(); upstream.next())
    if (upstream.currentItem() == node) return true;
  return false;
}

/// The shapes of a transform that show as meshes.
std::vector<MDagPath> visibleMeshes(const MDagPath& transform) {
  std::vector<MDagPath> meshes;
  unsigned int count = 0;
  transform.numberOfShapesDirectlyBelow(count);
  for (unsigned int i = 0; i < count; ++i) {
    MDagPath shape = transform;
    if (shape.extendToShapeDirectlyBelow(i) != MS::kSuccess || !shape.hasFn(MFn::kMesh)) continue;
    if (!MFnDagNode(shape).isIntermediateObject()) meshes.push_back(shape);
  }
  return meshes;
}

/// The copy of `shape` below the copy of its transform: the only one, or the one at the same place
/// among several.
MObject copyOf(const MDagPath& shape, const MDagPath& copiedTransform) {
  MDagPath transform = shape;
  transform.pop();
  const std::vector<MDagPath> originals = visibleMeshes(transform),
                              copies = visibleMeshes(copiedTransform);
  if (copies.size() == 1) return copies[0].node();
  for (std::size_t i = 0; i < originals.size() && i < copies.size(); ++i)
    if (originals[i] == shape) return copies[i].node();
  return MObject();
}

/// What is selected and hilited, which copying nodes changes.
class keptSelection {
 public:
  keptSelection() {
    MGlobal::getActiveSelectionList(active);
    MGlobal::getHiliteList(hilited);
  }
  ~keptSelection() {
    MGlobal::setActiveSelectionList(active);
    MGlobal::setHiliteList(hilited);
  }
  keptSelection(const keptSelection&) = delete;
  keptSelection& operator=(const keptSelection&) = delete;

 private:
  MSelectionList active, hilited;
};

/// Moves the copied shape under the transform as its intermediate original.
MStatus adoptAsOriginal(const MDagPath& shape, const MObject& copy) {
  MDagPath transform = shape;
  transform.pop();
  const MFnDagNode copyFn(copy);
  MString name;
  MStatus status = MGlobal::executeCommand(
      "rename \"" + copyFn.fullPathName() + "\" \"" + MFnDagNode(shape).name() + "Orig\"", name,
      false, false);
  if (status == MS::kSuccess)
    status = MGlobal::executeCommand("parent -shape -relative \"" + copyFn.fullPathName() +
                                         "\" \"" + transform.fullPathName() + "\"",
                                     false, false);
  if (status == MS::kSuccess)
    status = MGlobal::executeCommand(
        "setAttr " + copyFn.fullPathName() + ".intermediateObject true", false, false);
  return status;
}

/// Makes the shape's original: a copy of it, hidden under the same transform.
MStatus makeOriginal(const MDagPath& shape, MObject& original) {
  const keptSelection kept;
  MStringArray names;
  MStatus status = MGlobal::executeCommand(
      "duplicate -returnRootsOnly \"" + shape.fullPathName() + "\"", names, false, false);
  if (status != MS::kSuccess || names.length() == 0) return MS::kFailure;
  MSelectionList list;
  MDagPath transform;
  list.add(names[0]);
  if (list.getDagPath(0, transform) != MS::kSuccess) return MS::kFailure;
  const MObject copy = copyOf(shape, transform);
  status = copy.isNull() ? MStatus(MS::kFailure) : adoptAsOriginal(shape, copy);
  if (status == MS::kSuccess) original = copy;
  MGlobal::executeCommand("delete \"" + transform.fullPathName() + "\"", false, false);
  return status;
}

/// Adds what the shape itself has come to hold since.
void addOffsets(std::vector<vertexTweak>& tweaks, const tweakPlugs& plugs) {
  const std::vector<vertexTweak> present = plugs.read();
  std::size_t at = 0;
  for (vertexTweak& tweak : tweaks) {
    while (at < present.size() && present[at].vertex < tweak.vertex) ++at;
    if (at == present.size() || present[at].vertex != tweak.vertex) continue;
    for (int k = 0; k < 3; ++k) tweak.offset[k] += present[at].offset[k];
  }
}

/// Connects source -> tweak -> node -> shape where source -> shape was, or takes that back when it
/// can't be done.
MStatus connectChain(MDGModifier& modifier, const MPlug& source, const MPlug& shapeInput,
                     const chainPlugs& inserted, const chainPlugs& tweak) {
  MStatus status = MS::kSuccess;
  if (driverOf(shapeInput) == source) status = modifier.disconnect(source, shapeInput);
  if (status) status = modifier.connect(source, tweak.isThere ? tweak.input : inserted.input);
  if (status && tweak.isThere) status = modifier.connect(tweak.output, inserted.input);
  if (status) status = modifier.connect(inserted.output, shapeInput);
  if (status) {
    status = modifier.doIt();
    if (!status) modifier.undoIt();
  }
  if (!status) MGlobal::displayError("error setting tweaks on node");
  return status;
}

/// Connects the node's source to all that the node drives, and the node to nothing. What is driven
/// gets nothing for `unplug`, which takes a mesh of its own.
MStatus bypass(const MPlug& source, const chainPlugs& inserted, const chainPlugs& tweak,
               const MPlug& unplug) {
  MPlugArray fed;
  inserted.output.connectedTo(fed, false, true);
  if (fed.length() == 0) return MS::kFailure;
  MDGModifier modifier;
  MStatus status = modifier.disconnect(source, tweak.isThere ? tweak.input : inserted.input);
  if (status && tweak.isThere) status = modifier.disconnect(tweak.output, inserted.input);
  for (unsigned int i = 0; i < fed.length() && status; ++i) {
    status = modifier.disconnect(inserted.output, fed[i]);
    if (status && fed[i] != unplug) status = modifier.connect(source, fed[i]);
  }
  if (!status) return status;
  status = modifier.doIt();
  if (!status) modifier.undoIt();
  return status;
}

/// Deletes nodes by a modifier, which can bring them back, or for good.
MStatus deleteNodes(std::initializer_list<MObject> nodes, MDGModifier* deleter) {
  MStatus status;
  for (const MObject& node : nodes) {
    if (node.isNull()) continue;
    MObject gone = node;
    const MStatus deleted = deleter ? deleter->deleteNode(gone) : MGlobal::deleteNode(gone);
    if (status) status = deleted;
  }
  return status && deleter ? deleter->doIt() : status;
}

}  // namespace

MStatus mathHelper::insertNodeInHistory(const MDagPath& path, const MObject& node,
                                        const MObject& tweakNode, MObject* original) const {
  MDagPath shape;
  MStatus status = meshShape(path, shape);
  if (!status) return status;
  const chainPlugs inserted = plugsOf(node);
  const chainPlugs tweak = tweakNode.isNull() ? chainPlugs() : plugsOfTweak(tweakNode);
  if (!inserted.isThere || (!tweakNode.isNull() && !tweak.isThere)) return MS::kInvalidParameter;

  const tweakPlugs own = tweakPlugs::ofShape(shape);
  const std::vector<vertexTweak> tweaks = own.read();
  const MPlug shapeInput = MFnDagNode(shape).findPlug("inMesh", false);
  MPlug source = driverOf(shapeInput);
  // A copy may come with the tweaks apart or worked into its points: while there are none it can't
  // matter.
  const bool needsOriginal = source.isNull(), takesTweaks = tweak.isThere || needsOriginal;
  MObject made, before = original ? *original : MObject();
  if (takesTweaks) status = own.setToZero(tweaks);
  if (status && needsOriginal) {
    if (before.isNull()) status = makeOriginal(shape, made);
    const MObject& drives = before.isNull() ? made : before;
    if (status) source = MFnDependencyNode(drives).findPlug("outMesh", false);
  }
  MDGModifier modifier;
  if (status) status = connectChain(modifier, source, shapeInput, inserted, tweak);
  if (status && takesTweaks) {
    const tweakPlugs target = tweak.isThere ? tweakPlugs::ofNode(tweakNode) : own;
    status = target.set(tweaks);
    if (!status) {
      if (tweak.isThere) target.remove(tweaks);
      modifier.undoIt();
    }
  }
  if (status) {
    if (original && before.isNull()) *original = made;
    return status;
  }
  if (takesTweaks) own.set(tweaks);
  deleteNodes({made}, nullptr);
  return status;
}

MStatus mathHelper::removeNodeFromHistory(const MDagPath& path, const MObject& node,
                                          const MObject& tweakNode, const MObject& original,
                                          MDGModifier* deleter) const {
  MDagPath shape;
  MStatus status = meshShape(path, shape);
  if (!status) return status;
  const chainPlugs inserted = plugsOf(node);
  const chainPlugs tweak = tweakNode.isNull() ? chainPlugs() : plugsOfTweak(tweakNode);
  if (!inserted.isThere || (!tweakNode.isNull() && !tweak.isThere)) return MS::kInvalidParameter;
  if (tweak.isThere && driverOf(inserted.input) != tweak.output) return MS::kFailure;
  const MPlug source = driverOf(tweak.isThere ? tweak.input : inserted.input);
  MPlug shapeInput = MFnDagNode(shape).findPlug("inMesh", false);
  if (source.isNull() || !isInHistory(node, shapeInput)) return MS::kFailure;

  // The original goes too when it only stood in for the shape's own mesh.
  const bool takesOriginal =
      !original.isNull() && source.node() == original && driverOf(shapeInput) == inserted.output;
  const MObject ownMesh = takesOriginal ? source.asMObject() : MObject();
  std::vector<vertexTweak> tweaks;
  if (tweak.isThere) tweaks = tweakPlugs::ofNode(tweakNode).read();
  status = bypass(source, inserted, tweak, takesOriginal ? shapeInput : MPlug());
  if (!status) return status;
  if (takesOriginal) status = shapeInput.setMObject(ownMesh);
  const tweakPlugs own = tweakPlugs::ofShape(shape);
  addOffsets(tweaks, own);
  const MStatus set = own.set(tweaks);
  const MStatus deleted =
      deleteNodes({node, tweakNode, takesOriginal ? original : MObject()}, deleter);
  if (!status) return status;
  return set ? deleted : set;
}
