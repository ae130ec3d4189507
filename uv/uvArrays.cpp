#include "uv/uvArrays.h"

#include <maya/MFnMesh.h>

MStatus uvArrays::read(const MFnMesh& mesh, const MString* set) {
  const MStatus status = mesh.getUVs(u, v, set);
  return status ? mesh.getAssignedUVs(counts, ids, set) : status;
}

MStatus uvArrays::write(MFnMesh& mesh, step& failed, const MString* set) const {
  failed = step::clear;
  MStatus status = mesh.clearUVs(set);
  if (!status) return status;
  failed = step::set;
  status = mesh.setUVs(u, v, set);
  if (!status) return status;
  failed = step::assign;
  status = mesh.assignUVs(counts, ids, set);
  if (status) failed = step::none;
  return status;
}
