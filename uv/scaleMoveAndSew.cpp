#include "uv/scaleMoveAndSew.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MFn.h>
#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItSelectionList.h>

#include <algorithm>
#include <cmath>

#include "shared/numeric/indexArrays.h"
#include "shared/settings/flagReader.h"
#include "uv/uvMessages.h"

namespace {

constexpr const char* kTransferFlag = "-tr";

struct uvEnds {
  int a = -1, b = -1;
};

/// The UVs that a face has at two of its vertices.
uvEnds uvsAt(const MFnMesh& mesh, int face, const int ends[2]) {
  MIntArray corners;
  mesh.getPolygonVertices(face, corners);
  uvEnds found;
  for (unsigned int k = 0; k < corners.length(); ++k) {
    if (corners[k] == ends[0]) mesh.getPolygonUVid(face, static_cast<int>(k), found.a);
    if (corners[k] == ends[1]) mesh.getPolygonUVid(face, static_cast<int>(k), found.b);
  }
  return found;
}

double uvLength(const uvArrays& uvs, const uvEnds& ends) {
  const auto a = static_cast<unsigned int>(ends.a), b = static_cast<unsigned int>(ends.b);
  const double du = static_cast<double>(uvs.u[a]) - static_cast<double>(uvs.u[b]);
  const double dv = static_cast<double>(uvs.v[a]) - static_cast<double>(uvs.v[b]);
  return std::sqrt(du * du + dv * dv);
}

double meanOf(const MFloatArray& values, const std::vector<int>& ids) {
  double sum = 0.0;
  for (const int id : ids) sum += static_cast<double>(values[static_cast<unsigned int>(id)]);
  return sum / static_cast<double>(ids.size());
}

}  // namespace

void* scaleMoveAndSew::creator() {
  return new scaleMoveAndSew;
}

MSyntax scaleMoveAndSew::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kTransferFlag, "-transfer", MSyntax::kString);
  return syntax;
}

MStatus scaleMoveAndSew::read(const MDagPath& path, meshState& state) const {
  state.path = path;
  const MFnMesh mesh(path);
  if (!mesh.getAssignedUVs(state.uvs.counts, state.uvs.ids))
    return failWith("could not get assigned uvs!\n");
  for (unsigned int f = 0; f < state.uvs.counts.length(); ++f)
    if (state.uvs.counts[f] == 0)
      return failWith(
          "At least one of the faces on a selected mesh does not have uvs! this will break!");
  if (!mesh.getUvShellsIds(state.shellOfUv, state.shellCount))
    return failWith("error getting uv shell ids");
  return mesh.getUVs(state.uvs.u, state.uvs.v) ? MStatus(MS::kSuccess)
                                               : failWith("could not get uvs!\n");
}

MStatus scaleMoveAndSew::planEdge(const meshState& state, int edge, const MIntArray& faces,
                                  const int ends[2]) {
  if (faces.length() != 2)
    return failWith("the edge that is selected does not have 2 faces connected!");
  const MFnMesh mesh(state.path);
  double lengths[2];
  std::vector<int> uvs[2];
  for (unsigned int side = 0; side < 2; ++side) {
    const uvEnds found = uvsAt(mesh, faces[side], ends);
    if (found.a < 0 || found.b < 0) return failWith("could not get assigned uvs!\n");
    lengths[side] = uvLength(state.uvs, found);
    const int shell = state.shellOfUv[static_cast<unsigned int>(found.a)];
    for (unsigned int uv = 0; uv < state.shellOfUv.length(); ++uv)
      if (state.shellOfUv[uv] == shell) uvs[side].push_back(static_cast<int>(uv));
  }
  // The smaller one is scaled; of two equal ones the first.
  const std::size_t scaled = uvs[1].size() < uvs[0].size() ? 1 : 0;
  shellScale plan;
  plan.mesh = state.path;
  plan.uvs = toArray(uvs[scaled]);
  plan.scale = lengths[1 - scaled] / lengths[scaled];
  plan.pivotU = meanOf(state.uvs.u, uvs[scaled]);
  plan.pivotV = meanOf(state.uvs.v, uvs[scaled]);
  if (!std::isfinite(plan.scale) || plan.scale == 0.0)
    return failWith(MString("edge ") + edge + " of " + state.path.partialPathName() +
                    " has no length in the uvs of one of its faces: there is nothing to scale to");
  shells.push_back(plan);
  return MS::kSuccess;
}

MStatus scaleMoveAndSew::planMesh(const MDagPath& mesh, const MObject& component) {
  meshState state;
  MStatus status = read(mesh, state);
  if (!status) return status;
  MObject edges = component;
  MIntArray faces;
  for (MItMeshEdge edge(mesh, edges); !edge.isDone(); edge.next()) {
    const int ends[] = {edge.index(0), edge.index(1)};
    edge.getConnectedFaces(faces);
    status = planEdge(state, edge.index(), faces, ends);
    if (!status) return status;
  }
  meshes.push_back(state);
  return status;
}

MStatus scaleMoveAndSew::doIt(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MStatus status = readFlag(database, kTransferFlag, transfer, "could not parse message set");
  if (!status) return status;
  if (!parsed) return parsed;
  MGlobal::getActiveSelectionList(selectionBefore);
  for (MItSelectionList item(selectionBefore, MFn::kMeshEdgeComponent); !item.isDone();
       item.next()) {
    MDagPath mesh;
    MObject edges;
    if (!item.getDagPath(mesh, edges) || edges.isNull()) continue;
    status = planMesh(mesh, edges);
    if (!status) return status;
  }
  if (shells.empty()) return failWith("scaleMoveSewCmd: select edges between UV shells");
  return redoIt();
}

MStatus scaleMoveAndSew::scaleAll() {
  for (const shellScale& each : shells) {
    MFnSingleIndexedComponent component;
    MObject uvs = component.create(MFn::kMeshMapComponent);
    MIntArray ids = each.uvs;
    if (!component.addElements(ids)) return failWith("could not add elements!\n");
    MSelectionList list;
    list.add(each.mesh, uvs);
    MGlobal::setActiveSelectionList(list);
    // The last flag has no blank before its value: the host reads it all the same.
    change.commandToExecute(MString("polyEditUV -pu ") + each.pivotU + " -pv " + each.pivotV +
                            " -su " + each.scale + " -sv" + each.scale);
    if (const MStatus status = change.doIt(); !status) return status;
  }
  return MS::kSuccess;
}

MStatus scaleMoveAndSew::redoIt() {
  MStatus status = isDone ? change.doIt() : scaleAll();
  if (!status) change.undoIt();
  isDone = isDone || status;
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}

MStatus scaleMoveAndSew::putBack(const meshState& state) const {
  MFnMesh mesh(state.path);
  uvArrays now;
  if (!now.read(mesh)) return failWith("could not get assigned uvs!\n");
  if (now == state.uvs) return MS::kSuccess;
  uvArrays::step failed;
  return state.uvs.write(mesh, failed) ? MStatus(MS::kSuccess) : failWith("could not assign!\n");
}

MStatus scaleMoveAndSew::undoIt() {
  MStatus status = change.undoIt();
  // What the host could not take back exactly is written over.
  for (const meshState& each : meshes)
    if (const MStatus put = putBack(each); !put) status = put;
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}
