#include "uv/pickEdits.h"

#include <maya/MDagPath.h>

#include "shared/selection/mirrorLookup.h"
#include "shared/settings/toolSettings.h"

pickMirror pickMirror::now() {
  const toolSettings& settings = toolSettings::current();
  return {settings.mirror, settings.mirrorAxis, settings.mirrorWorldSpace};
}

void adjustSelection(const MDagPath& mesh, int kind, const MIntArray& indices,
                     MGlobal::ListAdjustment adjustment, const pickMirror& mirror) {
  if (indices.length() == 0 || !mesh.isValid()) return;
  MIntArray others;
  if (mirror.isOn) {
    const mirrorLookup lookup(mesh, mirror.axis, mirror.isWorld);
    for (unsigned int i = 0; i < indices.length(); ++i) {
      const int there = lookup.counterpart(kind, indices[i]);
      if (there >= 0 && there != indices[i]) others.append(there);
    }
  }
  MGlobal::select(mesh, makeComponent(kind, indices), adjustment);
  if (others.length() == 0) return;
  const bool removes = adjustment == MGlobal::kRemoveFromList;
  MGlobal::select(mesh, makeComponent(kind, others),
                  removes ? MGlobal::kRemoveFromList : MGlobal::kAddToList);
}

void adjustSelection(const pickedComponent& picked, MGlobal::ListAdjustment adjustment,
                     const pickMirror& mirror) {
  if (picked.isHit())
    adjustSelection(picked.mesh, picked.kind, MIntArray(1, picked.index), adjustment, mirror);
}
