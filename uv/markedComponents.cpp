#include "uv/markedComponents.h"

#include <maya/MFn.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <algorithm>

#include "shared/mesh/mathHelper.h"
#include "uv/markAttributes.h"
#include "uv/selectLocatorLink.h"

namespace {

meshComponents& entryOf(std::vector<meshComponents>& all, const MDagPath& mesh) {
  const MObject node = mesh.node();
  const auto found = std::find_if(
      all.begin(), all.end(), [&](const meshComponents& each) { return each.mesh.node() == node; });
  if (found != all.end()) return *found;
  all.push_back({mesh, MIntArray(), MIntArray()});
  return all.back();
}

/// Calls back for each of a selection's components of one type, mesh by mesh.
template <class Call>
void forComponents(const MSelectionList& selection, MFn::Type type, const Call& call) {
  for (MItSelectionList item(selection, type); !item.isDone(); item.next()) {
    MDagPath mesh;
    MObject component;
    if (!item.getDagPath(mesh, component) || component.isNull() || !mesh.extendToShape()) continue;
    if (mesh.node().hasFn(MFn::kMesh)) call(mesh, component);
  }
}

bool isSame(const MIntArray& a, const MIntArray& b) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

void store(const MObject& shape, const markAttributes::name& attribute, const MIntArray& indices) {
  if (!markAttributes::has(shape, attribute)) return;
  if (!isSame(markAttributes::indicesIn(shape, attribute), indices))
    markAttributes::writeIndices(shape, attribute, indices);
}

MIntArray inRange(const MDagPath& mesh, const markAttributes::name& attribute, int count,
                  const char* lossText) {
  const MIntArray stored = markAttributes::indicesIn(mesh.node(), attribute);
  MIntArray kept;
  for (unsigned int i = 0; i < stored.length(); ++i)
    if (stored[i] >= 0 && stored[i] < count) kept.append(stored[i]);
  const unsigned int lost = stored.length() - kept.length();
  if (lost == 0) return kept;
  MString warning = mesh.partialPathName() + " has changed since it was marked: ";
  warning += lost;
  MGlobal::displayWarning(warning + lossText);
  return kept;
}

}  // namespace

std::vector<meshComponents> selectedComponents(const MSelectionList& selection) {
  std::vector<meshComponents> all;
  forComponents(selection, MFn::kMeshEdgeComponent, [&](const MDagPath& mesh, MObject& component) {
    MIntArray& edges = entryOf(all, mesh).edges;
    for (MItMeshEdge edge(mesh, component); !edge.isDone(); edge.next()) edges.append(edge.index());
  });
  forComponents(selection, MFn::kMeshVertComponent, [&](const MDagPath& mesh, MObject& component) {
    MIntArray& vertices = entryOf(all, mesh).vertices;
    for (MItMeshVertex vertex(mesh, component); !vertex.isDone(); vertex.next())
      vertices.append(vertex.index());
  });
  const mathHelper math;
  for (meshComponents& each : all) {
    each.edges = math.uniqueSorted(each.edges);
    each.vertices = math.uniqueSorted(each.vertices);
  }
  return all;
}

std::vector<MObject> loadedMeshes() {
  std::vector<MObject> meshes;
  for (MItDependencyNodes node(MFn::kPluginLocatorNode); !node.isDone(); node.next()) {
    const MFnDependencyNode locator(node.thisNode());
    if (locator.typeName() != selectLocatorLink::kNodeType) continue;
    MPlugArray listeners;
    locator.findPlug("message", false).connectedTo(listeners, false, true);
    for (unsigned int i = 0; i < listeners.length(); ++i) {
      const MObject shape = listeners[i].node();
      if (shape.hasFn(MFn::kMesh) && selectLocatorLink::locatorOf(shape) == node.thisNode())
        meshes.push_back(shape);
    }
  }
  return meshes;
}

void storeSelectionOf(const MObject& shape, const std::vector<meshComponents>& selected) {
  const auto found =
      std::find_if(selected.begin(), selected.end(),
                   [&](const meshComponents& each) { return each.mesh.node() == shape; });
  const bool isSelected = found != selected.end();
  store(shape, markAttributes::kEdgeSelection, isSelected ? found->edges : MIntArray());
  store(shape, markAttributes::kVertSelection, isSelected ? found->vertices : MIntArray());
}

void storeSelection(const MSelectionList& selection) {
  const std::vector<MObject> meshes = loadedMeshes();
  if (meshes.empty()) return;
  const std::vector<meshComponents> selected = selectedComponents(selection);
  for (const MObject& shape : meshes) storeSelectionOf(shape, selected);
}

MIntArray seamsOf(const MDagPath& mesh) {
  return inRange(mesh, markAttributes::kMarkedEdges, MFnMesh(mesh).numEdges(),
                 " of its seams are gone.");
}

MIntArray anchorsOf(const MDagPath& mesh) {
  return inRange(mesh, markAttributes::kAncorPoints, MFnMesh(mesh).numVertices(),
                 " of its anchors are gone.");
}
