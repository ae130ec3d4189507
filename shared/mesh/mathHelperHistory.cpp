#include <maya/MDGModifier.h>
#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

#include "shared/mesh/mathHelper.h"
#include "shared/mesh/shownMesh.h"

namespace {

/// The offset of one vertex.
struct vertexTweak {
  int vertex;
  double offset[3];
};

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

MPlug tweaksOfShape(const MDagPath& shape) {
  return MFnDagNode(shape).findPlug("pnts");
}
MPlug tweaksOfNode(const MObject& node) {
  return MFnDependencyNode(node).findPlug("tweak");
}

/// The offsets of an array of triples that are not zero, by vertex.
std::vector<vertexTweak> readTweaks(MPlug array) {
  MIntArray vertices;
  array.getExistingArrayAttributeIndices(vertices);
  std::vector<vertexTweak> tweaks;
  for (unsigned int i = 0; i < vertices.length(); ++i) {
    const MPlug element = array.elementByLogicalIndex(static_cast<unsigned int>(vertices[i]));
    vertexTweak tweak{vertices[i], {}};
    for (unsigned int k = 0; k < 3; ++k) tweak.offset[k] = element.child(k).asDouble();
    if (tweak.offset[0] != 0.0 || tweak.offset[1] != 0.0 || tweak.offset[2] != 0.0)
      tweaks.push_back(tweak);
  }
  std::sort(tweaks.begin(), tweaks.end(),
            [](const vertexTweak& a, const vertexTweak& b) { return a.vertex < b.vertex; });
  return tweaks;
}

/// Text that reads back as the same number.
void append(std::string& text, double number) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text.push_back(' ');
  text.append(digits, end);
}

/// Sets `name`[vertex] of all tweaks, some lines at a time: a command for each would cost more than
/// what it does.
template <class Value>
MStatus setEach(const std::string& name, const std::vector<vertexTweak>& tweaks, Value value) {
  constexpr std::size_t kLines = 512;
  for (std::size_t first = 0; first < tweaks.size(); first += kLines) {
    std::string lines;
    for (std::size_t i = first; i < tweaks.size() && i < first + kLines; ++i) {
      lines += "setAttr " + name + "[" + std::to_string(tweaks[i].vertex) + "]";
      value(lines, tweaks[i]);
      lines += ";\n";
    }
    const MStatus status = MGlobal::executeCommand(lines.c_str(), false, false);
    if (status != MS::kSuccess) return status;
  }
  return MS::kSuccess;
}

MStatus setToZero(const std::string& name, const std::vector<vertexTweak>& tweaks) {
  return setEach(name, tweaks, [](std::string& line, const vertexTweak&) { line += " 0 0 0"; });
}
MStatus setTo(const std::string& name, const std::vector<vertexTweak>& tweaks) {
  return setEach(name, tweaks, [](std::string& line, const vertexTweak& tweak) {
    for (const double number : tweak.offset) append(line, number);
  });
}

std::string pointsName(const MDagPath& shape) {
  return std::string(shape.fullPathName().asChar()) + ".pnts";
}
std::string tweakName(const MObject& node) {
  return std::string(MFnDependencyNode(node).name().asChar()) + ".tweak";
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
void addOffsets(std::vector<vertexTweak>& tweaks, const MPlug& array) {
  const std::vector<vertexTweak> present = readTweaks(array);
  std::size_t at = 0;
  for (vertexTweak& tweak : tweaks) {
    while (at < present.size() && present[at].vertex < tweak.vertex) ++at;
    if (at == present.size() || present[at].vertex != tweak.vertex) continue;
    for (int k = 0; k < 3; ++k) tweak.offset[k] += present[at].offset[k];
  }
}

/// Connects source -> tweak -> node -> shape where source -> shape was, or takes that back when it
/// can't be done.
MStatus connectChain(const MPlug& source, bool wasDriving, const MPlug& shapeInput,
                     const chainPlugs& inserted, const chainPlugs& tweak) {
  MDGModifier modifier;
  MStatus status = wasDriving ? modifier.disconnect(source, shapeInput) : MStatus(MS::kSuccess);
  if (status == MS::kSuccess)
    status = modifier.connect(source, tweak.isThere ? tweak.input : inserted.input);
  if (status == MS::kSuccess && tweak.isThere)
    status = modifier.connect(tweak.output, inserted.input);
  if (status == MS::kSuccess) status = modifier.connect(inserted.output, shapeInput);
  if (status == MS::kSuccess) {
    status = modifier.doIt();
    if (status != MS::kSuccess) modifier.undoIt();
  }
  if (status != MS::kSuccess) MGlobal::displayError("error setting tweaks on node");
  return status;
}

/// Connects the node's source to all that the node drives, and the node to nothing.
MStatus bypass(const MPlug& source, const chainPlugs& inserted, const chainPlugs& tweak) {
  MPlugArray fed;
  inserted.output.connectedTo(fed, false, true);
  if (fed.length() == 0) return MS::kFailure;
  MDGModifier modifier;
  MStatus status = modifier.disconnect(source, tweak.isThere ? tweak.input : inserted.input);
  if (status == MS::kSuccess && tweak.isThere)
    status = modifier.disconnect(tweak.output, inserted.input);
  for (unsigned int i = 0; i < fed.length() && status == MS::kSuccess; ++i) {
    status = modifier.disconnect(inserted.output, fed[i]);
    if (status == MS::kSuccess) status = modifier.connect(source, fed[i]);
  }
  if (status != MS::kSuccess) return status;
  status = modifier.doIt();
  if (status != MS::kSuccess) modifier.undoIt();
  return status;
}

}  // namespace

MStatus mathHelper::insertNodeInHistory(const MDagPath& path, const MObject& node,
                                        const MObject& tweakNode) const {
  MDagPath shape;
  MStatus status = meshShape(path, shape);
  if (status != MS::kSuccess) return status;
  const chainPlugs inserted = plugsOf(node);
  const chainPlugs tweak = tweakNode.isNull() ? chainPlugs() : plugsOfTweak(tweakNode);
  if (!inserted.isThere || (!tweakNode.isNull() && !tweak.isThere)) return MS::kInvalidParameter;

  const std::vector<vertexTweak> tweaks = readTweaks(tweaksOfShape(shape));
  const MPlug shapeInput = MFnDagNode(shape).findPlug("inMesh");
  MPlug source = driverOf(shapeInput);
  const bool wasDriven = !source.isNull();
  // A copy may come with the tweaks apart or worked into its points: while there are none it can't
  // matter.
  const bool takesTweaks = tweak.isThere || !wasDriven;
  if (takesTweaks) status = setToZero(pointsName(shape), tweaks);
  MObject original;
  if (status == MS::kSuccess && !wasDriven) {
    status = makeOriginal(shape, original);
    source = original.isNull() ? MPlug() : MFnDependencyNode(original).findPlug("outMesh");
  }
  if (status == MS::kSuccess && takesTweaks)
    status = setTo(tweak.isThere ? tweakName(tweakNode) : pointsName(shape), tweaks);
  if (status == MS::kSuccess) status = connectChain(source, wasDriven, shapeInput, inserted, tweak);
  if (status == MS::kSuccess) return status;
  if (takesTweaks) setTo(pointsName(shape), tweaks);
  if (!original.isNull()) MGlobal::deleteNode(original);
  return status;
}

MStatus mathHelper::removeNodeFromHistory(const MDagPath& path, const MObject& node,
                                          const MObject& tweakNode) const {
  MDagPath shape;
  MStatus status = meshShape(path, shape);
  if (status != MS::kSuccess) return status;
  const chainPlugs inserted = plugsOf(node);
  const chainPlugs tweak = tweakNode.isNull() ? chainPlugs() : plugsOfTweak(tweakNode);
  if (!inserted.isThere || (!tweakNode.isNull() && !tweak.isThere)) return MS::kInvalidParameter;
  if (tweak.isThere && driverOf(inserted.input) != tweak.output) return MS::kFailure;
  const MPlug source = driverOf(tweak.isThere ? tweak.input : inserted.input);
  if (source.isNull()) return MS::kFailure;

  std::vector<vertexTweak> tweaks;
  if (tweak.isThere) tweaks = readTweaks(tweaksOfNode(tweakNode));
  status = bypass(source, inserted, tweak);
  if (status != MS::kSuccess) return status;
  addOffsets(tweaks, tweaksOfShape(shape));
  status = setTo(pointsName(shape), tweaks);
  MObject gone = node;
  const MStatus deleted = MGlobal::deleteNode(gone);
  MObject goneTweak = tweakNode;
  if (tweak.isThere) MGlobal::deleteNode(goneTweak);
  return status == MS::kSuccess ? deleted : status;
}
