#include "uv/tweakUVVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

#include <cmath>

#include "shared/mesh/vertexPins.h"
#include "shared/mesh/worldPoints.h"
#include "shared/settings/flagReader.h"
#include "uv/meshUvPins.h"
#include "uv/uvMessages.h"
#include "uv/uvObjectEnds.h"
#include "uv/uvPlacement.h"
#include "uv/uvSelection.h"

namespace {

constexpr const char* kName = "qxTweakUVVerts";
constexpr const char* kParseText = "could not parse tweak message set";

/// Reads a flag's two numbers.
MStatus readPair(const MArgDatabase& database, const char* flag, double& u, double& v) {
  if (!database.isFlagSet(flag)) return MS::kSuccess;
  MStatus status = database.getFlagArgument(flag, 0, u);
  if (status) status = database.getFlagArgument(flag, 1, v);
  if (!status) status.perror(kParseText);
  return status;
}

/// 0, 1, 2 and so on.
MIntArray firstNumbers(int count) {
  MIntArray numbers(static_cast<unsigned int>(count));
  for (int i = 0; i < count; ++i) numbers[static_cast<unsigned int>(i)] = i;
  return numbers;
}

bool isFinite(const uvTweakResult& plan) {
  for (unsigned int i = 0; i < plan.ids.length(); ++i)
    if (!std::isfinite(plan.u[i]) || !std::isfinite(plan.v[i])) return false;
  return true;
}

}  // namespace

void* tweakUVVertsCmd::creator() {
  return new tweakUVVertsCmd;
}

MSyntax tweakUVVertsCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag("-m", "-move", MSyntax::kDouble, MSyntax::kDouble);
  syntax.addFlag("-r", "-rotate", MSyntax::kDouble);
  syntax.addFlag("-s", "-scale", MSyntax::kDouble, MSyntax::kDouble);
  syntax.addFlag("-p", "-pivot", MSyntax::kDouble, MSyntax::kDouble);
  syntax.addFlag("-f", "-falloff", MSyntax::kDouble);
  syntax.addFlag("-fc", "-falloffCurve", MSyntax::kString);
  syntax.addFlag("-ip", "-ignorePins", MSyntax::kBoolean);
  return syntax;
}

MStatus tweakUVVertsCmd::parseArguments(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MString curve("smooth");
  MStatus status = readPair(database, "-m", options.moveU, options.moveV);
  if (status) status = readFlag(database, "-r", options.angleDegrees, kParseText);
  if (status) status = readPair(database, "-s", options.scaleU, options.scaleV);
  if (status) status = readPair(database, "-p", options.pivotU, options.pivotV);
  if (status) status = readFlag(database, "-f", options.falloff, kParseText);
  if (status) status = readFlag(database, "-fc", curve, kParseText);
  if (status) status = readFlag(database, "-ip", ignoresPins, kParseText);
  if (!status) return status;
  if (!parsed) return parsed;
  options.hasPivot = database.isFlagSet("-p");
  options.isLinear = curve == "linear";
  if (!options.isLinear && curve != "smooth")
    return failWith(MString(kName) + ": the falloff curve is smooth or linear, not " + curve);
  if (!(options.falloff >= 0.0) || !std::isfinite(options.falloff))
    return failWith(MString(kName) + ": the falloff is a distance in UV units, 0 for none");
  return MS::kSuccess;
}

MStatus tweakUVVertsCmd::planVertices(const MDagPath& uvObject, const MIntArray& vertices) {
  const MFnMesh layout(uvObject);
  const uvPlacement placement;
  MPointArray points;
  uvTweakInput input;
  MStatus status = layout.getPoints(points, MSpace::kWorld);
  if (status) status = layout.getVertices(input.counts, input.ids);
  if (!status) return status;
  // The mesh knows the UVs as they are; without one they are where the object's own space puts
  // them.
  const MDagPath mesh = meshOfUvObject(uvObject);
  if (mesh.isValid()) MFnMesh(mesh).getUVs(input.u, input.v);
  if (input.u.length() != points.length()) {
    const MPoint origin = MPoint::origin * uvObject.inclusiveMatrix();
    input.u.setLength(points.length());
    input.v.setLength(points.length());
    for (unsigned int i = 0; i < points.length(); ++i) {
      input.u[i] = placement.toUv(points[i].x - origin.x);
      input.v[i] = placement.toUv(points[i].z - origin.z);
    }
  }
  for (unsigned int i = 0; i < vertices.length(); ++i)
    if (static_cast<unsigned int>(vertices[i]) < points.length()) input.chosen.append(vertices[i]);
  if (!ignoresPins) input.isPinned = vertexPins::pinFlags(uvObject);
  const uvTweakResult plan = planUvTweak(input, options);
  if (plan.ids.length() == 0) return MS::kSuccess;
  if (!isFinite(plan)) return failWith(MString(kName) + ": the UVs would go beyond all numbers");
  vertexMove move;
  move.uvObject = uvObject;
  move.vertices = plan.ids;
  move.before = pointsAt(points, plan.ids);
  move.after = move.before;
  for (unsigned int i = 0; i < plan.ids.length(); ++i) {
    const auto uv = static_cast<unsigned int>(plan.ids[i]);
    move.after[i].x += placement.toDistance(static_cast<double>(plan.u[i]) - input.u[uv]);
    move.after[i].z += placement.toDistance(static_cast<double>(plan.v[i]) - input.v[uv]);
  }
  status = move.placesBefore.take(uvObject, move.vertices);
  if (status) moves.push_back(move);
  return status;
}

MStatus tweakUVVertsCmd::planUvs(const MDagPath& mesh, const MIntArray& uvs) {
  meshUvEdit edit;
  const MStatus status = edit.read(mesh);
  if (!status) return status;
  uvTweakInput input;
  input.u = edit.before.u;
  input.v = edit.before.v;
  input.counts = edit.before.counts;
  input.ids = edit.before.ids;
  input.chosen = uvs;
  if (!ignoresPins) input.isPinned = meshUvPins(mesh, input.u.length());
  const uvTweakResult plan = planUvTweak(input, options);
  if (plan.ids.length() == 0) return status;
  if (!isFinite(plan)) return failWith(MString(kName) + ": the UVs would go beyond all numbers");
  edit.after = edit.before;
  for (unsigned int i = 0; i < plan.ids.length(); ++i) {
    edit.after.u[static_cast<unsigned int>(plan.ids[i])] = plan.u[i];
    edit.after.v[static_cast<unsigned int>(plan.ids[i])] = plan.v[i];
  }
  edits.push_back(edit);
  return status;
}

MStatus tweakUVVertsCmd::doIt(const MArgList& arguments) {
  MStatus status = parseArguments(arguments);
  if (!status) return status;
  MGlobal::getActiveSelectionList(selectionBefore);
  bool isAnySelected = false;
  for (const selectedUvs& each : uvsIn(selectionBefore)) {
    const bool isUvObject = meshOfUvObject(each.mesh).isValid();
    const MDagPath uvObject = isUvObject ? each.mesh : uvObjectOfMesh(each.mesh);
    MIntArray ids = isUvObject ? verticesIn(selectionBefore, each.mesh) : each.uvs;
    if (each.isWhole)
      ids =
          firstNumbers(isUvObject ? MFnMesh(each.mesh).numVertices() : MFnMesh(each.mesh).numUVs());
    if (ids.length() == 0) continue;
    isAnySelected = true;
    status = uvObject.isValid() ? planVertices(uvObject, ids) : planUvs(each.mesh, ids);
    if (!status) return status;
  }
  if (!isAnySelected)
    return failWith(MString(kName) + ": select vertices of a UV object, or UVs of a mesh");
  return redoIt();
}

MStatus tweakUVVertsCmd::redoIt() {
  MStatus status = MS::kSuccess;
  std::size_t moved = 0, edited = 0;
  for (; status && moved < moves.size(); ++moved)
    status = writeWorldPoints(moves[moved].uvObject, moves[moved].vertices, moves[moved].after);
  for (; status && edited < edits.size(); ++edited) status = edits[edited].apply();
  if (!status) takeBack(moved, edited > 0 ? edited - 1 : 0);
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}

MStatus tweakUVVertsCmd::undoIt() {
  const MStatus status = takeBack(moves.size(), edits.size());
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}

MStatus tweakUVVertsCmd::takeBack(std::size_t moved, std::size_t edited) {
  MStatus status = MS::kSuccess;
  while (edited > 0)
    if (const MStatus taken = edits[--edited].takeBack(); !taken) status = taken;
  while (moved > 0) {
    const vertexMove& move = moves[--moved];
    const MStatus put = move.placesBefore.putBack(move.uvObject, move.vertices, move.before);
    if (!put) status = put;
  }
  return status;
}
