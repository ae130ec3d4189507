#include "modeling/selectionEdits.h"

#include <maya/M3dView.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include <cmath>
#include <limits>

#include "shared/mesh/polyHelper.h"
#include "shared/selection/mirrorLookup.h"
#include "shared/view/viewProjector.h"

namespace {

MGlobal::ListAdjustment hostAdjustment(int adjustment) {
  if (adjustment == kPickReplace) return MGlobal::kReplaceList;
  return adjustment == kPickRemove ? MGlobal::kRemoveFromList : MGlobal::kAddToList;
}

/// What the other half of a pair does to the list after the first has.
MGlobal::ListAdjustment pairAdjustment(int adjustment) {
  return adjustment == kPickRemove ? MGlobal::kRemoveFromList : MGlobal::kAddToList;
}

void adjust(const MDagPath& mesh, int kind, const MIntArray& indices,
            MGlobal::ListAdjustment adjustment) {
  if (indices.length() > 0) MGlobal::select(mesh, makeComponent(kind, indices), adjustment);
}

/// The counterpart of an edge where mirroring is on and it has another one; -1 otherwise.
int otherEdge(const pickedComponent& edge, const gestureSettings& settings) {
  if (!settings.mirror) return -1;
  const int there =
      mirrorLookup(edge.mesh, settings.mirrorAxis, settings.mirrorWorldSpace).edge(edge.index);
  return there == edge.index ? -1 : there;
}

MIntArray wholeRun(const MDagPath& mesh, int edge, bool isLoop) {
  const polyHelper poly;
  MIntArray edges;
  (void)(isLoop ? poly.edgeLoop(mesh, edge, edges) : poly.edgeRing(mesh, edge, edges));
  return edges;
}

MIntArray partOfRun(const MDagPath& mesh, int first, int last, bool isLoop) {
  const polyHelper poly;
  MIntArray edges;
  (void)(isLoop ? poly.partialEdgeLoop(mesh, first, last, edges)
                : poly.partialEdgeRing(mesh, first, last, edges));
  return edges;
}

/// Whether the way from the hit point to the cursor runs along the edge as both show.
bool runsAlong(const viewProjector& projector, const pickedComponent& edge, const MPointArray& ends,
               short x, short y) {
  const viewPlace a = projector.project(ends[0]), b = projector.project(ends[1]),
                  from = projector.project(edge.point);
  const double edgeX = b.x - a.x, edgeY = b.y - a.y, wayX = x - from.x, wayY = y - from.y;
  const double lengths = std::hypot(edgeX, edgeY) * std::hypot(wayX, wayY);
  if (!(lengths > 0.0)) return false;
  constexpr double kWithinSixtyDegrees = 0.5;
  return std::fabs(edgeX * wayX + edgeY * wayY) / lengths > kWithinSixtyDegrees;
}

}  // namespace

void applyPick(const pickedComponent& hit, int adjustment, const gestureSettings& settings) {
  if (!hit.isHit() || !hit.mesh.isValid()) return;
  // Found first: of a pair that goes the counterpart is still where it was.
  int there = -1;
  if (settings.mirror)
    there = mirrorLookup(hit.mesh, settings.mirrorAxis, settings.mirrorWorldSpace)
                .counterpart(hit.kind, hit.index);
  adjust(hit.mesh, hit.kind, MIntArray(1, hit.index), hostAdjustment(adjustment));
  if (there >= 0 && there != hit.index)
    adjust(hit.mesh, hit.kind, MIntArray(1, there), pairAdjustment(adjustment));
}

void applyEdgeRun(const pickedComponent& edge, bool isLoop, int adjustment,
                  const gestureSettings& settings) {
  if (edge.kind != kEdgeKind || !edge.mesh.isValid()) return;
  const int there = otherEdge(edge, settings);
  adjust(edge.mesh, kEdgeKind, wholeRun(edge.mesh, edge.index, isLoop), hostAdjustment(adjustment));
  if (there >= 0)
    adjust(edge.mesh, kEdgeKind, wholeRun(edge.mesh, there, isLoop), pairAdjustment(adjustment));
}

edgeRunPart runTowards(const M3dView& view, const pickedComponent& edge, short x, short y) {
  edgeRunPart part;
  const MPointArray ends = cornersOf(edge);
  MStatus status;
  const viewProjector projector(view, &status);
  if (edge.kind != kEdgeKind || ends.length() != 2 || status != MS::kSuccess) return part;
  part.isLoop = runsAlong(projector, edge, ends, x, y);
  const MIntArray run = wholeRun(edge.mesh, edge.index, part.isLoop);
  double best = std::numeric_limits<double>::infinity();
  pickedComponent other = edge;
  for (unsigned int i = 0; i < run.length(); ++i) {
    other.index = run[i];
    const MPointArray corners = cornersOf(other);
    if (corners.length() != 2) continue;
    const viewPlace centre = projector.project(corners[0] + (corners[1] - corners[0]) * 0.5);
    if (centre.isClipped) continue;
    const double distance = std::hypot(centre.x - x, centre.y - y);
    if (!(distance < best)) continue;
    best = distance;
    part.last = run[i];
  }
  return part;
}

void addRunPart(const pickedComponent& edge, const edgeRunPart& part,
                const gestureSettings& settings) {
  if (part.last < 0) return;
  pickedComponent lastEdge = edge;
  lastEdge.index = part.last;
  const int firstThere = otherEdge(edge, settings), lastThere = otherEdge(lastEdge, settings);
  adjust(edge.mesh, kEdgeKind, partOfRun(edge.mesh, edge.index, part.last, part.isLoop),
         MGlobal::kAddToList);
  if (firstThere >= 0 && lastThere >= 0)
    adjust(edge.mesh, kEdgeKind, partOfRun(edge.mesh, firstThere, lastThere, part.isLoop),
           MGlobal::kAddToList);
}
