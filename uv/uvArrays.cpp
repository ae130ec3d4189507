#include "uv/uvArrays.h"

#include <maya/MFnMesh.h>

namespace {

template <class Array>
bool isSame(const Array& a, const Array& b) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

}  // namespace

bool uvArrays::operator==(const uvArrays& other) const {
  return isSame(u, other.u) && isSame(v, other.v) && isSame(counts, other.counts) &&
         isSame(ids, other.ids);
}

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
