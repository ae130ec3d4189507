#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MObjectArray.h>
#include <maya/MStringArray.h>

#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/id_arrays.h"
#include "host/mesh/shells.h"

namespace host::api {
namespace {

/// `wanted`, or `wanted` with the first number that makes it a new set's name.
std::string freeSetName(const mesh::Mesh& mesh, const MString& wanted) {
  const std::string base = wanted.length() > 0 ? toStd(wanted) : "uvSet";
  std::string name = base;
  for (int number = 1; mesh.findUvSet(name) >= 0; ++number) name = base + std::to_string(number);
  return name;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::editAttributes;
using api::readMesh;
using api::setStatus;
using api::toMString;

int MFnMesh::numUVSets(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? data->mesh.uvSetCount() : 0;
}
MStatus MFnMesh::getUVSetNames(MStringArray& setNames) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  setNames.clear();
  for (int i = 0; i < data->mesh.uvSetCount(); ++i)
    setNames.append(toMString(data->mesh.uvSet(i).name));
  return MStatus::kSuccess;
}
MStatus MFnMesh::getUVSetFamilyNames(MStringArray& familyNames) const {
  return getUVSetNames(familyNames);  // no set is kept per instance, so each is a family of its own
}
MString MFnMesh::currentUVSetName(MStatus* status, int) const {
  const auto data = readMesh(*this, status);
  return data && data->mesh.uvSetCount() > 0
             ? toMString(data->mesh.uvSet(data->mesh.currentUvSet()).name)
             : MString();
}
MStatus MFnMesh::getCurrentUVSetName(MString& setName, int instance) const {
  MStatus status;
  setName = currentUVSetName(&status, instance);
  return status;
}
MStatus MFnMesh::setCurrentUVSetName(const MString& setName, MDGModifier* modifier,
                                     MSelectionList*) {
  return editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    const int set = mesh.findUvSet(setName.asChar());
    if (set < 0) return MStatus::kInvalidParameter;
    mesh.setCurrentUvSet(set);
    return MStatus::kSuccess;
  });
}

MString MFnMesh::createUVSetWithName(const MString& uvSetName, MDGModifier* modifier,
                                     MStatus* status, const MUintArray*) {
  std::string name;
  const MStatus done = editAttributes(*this, modifier, [&](mesh::Mesh& mesh) {
    name = api::freeSetName(mesh, uvSetName);
    mesh.addUvSet({name, {}, {}});
    return MStatus::kSuccess;
  });
  setStatus(status, done.statusCode());
  return done ? toMString(name) : MString();
}
MStatus MFnMesh::createUVSet(MString& uvSetName, MDGModifier* modifier,
                             const MUintArray* instances) {
  MStatus status;
  const MString made = createUVSetWithName(uvSetName, modifier, &status, instances);
  if (status) uvSetName = made;
  return status;
}
MStatus MFnMesh::createUVSetDataMesh(MString& uvSetName) {
  return createUVSet(uvSetName);
}

MString MFnMesh::copyUVSetWithName(const MString& fromName, const MString& toName,
                                   MDGModifier* modifier, MStatus* status) {
  std::string name;
  const MStatus done = editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    const int from = mesh.findUvSet(fromName.asChar()), to = mesh.findUvSet(toName.asChar());
    if (from < 0 || from == to) return MStatus::kInvalidParameter;
    mesh::UvSet copy = mesh.uvSet(from);
    copy.name = name = to >= 0 ? mesh.uvSet(to).name : api::freeSetName(mesh, toName);
    if (to >= 0)
      mesh.setUvSet(to, std::move(copy));
    else
      mesh.addUvSet(std::move(copy));
    return MStatus::kSuccess;
  });
  setStatus(status, done.statusCode());
  return done ? toMString(name) : MString();
}
MStatus MFnMesh::copyUVSet(const MString& fromName, MString& toName, MDGModifier* modifier) {
  MStatus status;
  const MString made = copyUVSetWithName(fromName, toName, modifier, &status);
  if (status) toName = made;
  return status;
}
MStatus MFnMesh::renameUVSet(const MString& origName, MString& newName, MDGModifier* modifier) {
  return editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    const int set = mesh.findUvSet(origName.asChar());
    if (set < 0) return MStatus::kInvalidParameter;
    if (origName == newName) return MStatus::kSuccess;
    mesh.editUvSet(set).name = api::freeSetName(mesh, newName);
    newName = toMString(mesh.uvSet(set).name);
    return MStatus::kSuccess;
  });
}
MStatus MFnMesh::deleteUVSet(const MString& setName, MDGModifier* modifier, MSelectionList*) {
  return editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    const int set = mesh.findUvSet(setName.asChar());
    if (set < 0) return MStatus::kInvalidParameter;
    if (set == 0) {
      api::rememberError(Error{"The default UV set can't be deleted"});
      return MStatus::kFailure;
    }
    mesh.removeUvSet(set);
    return MStatus::kSuccess;
  });
}

MStatus MFnMesh::getUvShellsIds(MIntArray& uvShellIds, unsigned int& nbUvShells,
                                const MString* uvSet) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  const int set = api::uvSetIndex(data->mesh, uvSet);
  if (set < 0) return MStatus::kInvalidParameter;
  const mesh::UvShells shells = mesh::findUvShells(data->mesh, set);
  // UVs that no face uses are shells of their own, behind the others.
  Index count = shells.count;
  int* id = api::Access::overwrite(uvShellIds, static_cast<unsigned int>(shells.ofUv.size()));
  for (const Index shell : shells.ofUv) *id++ = shell >= 0 ? shell : count++;
  nbUvShells = static_cast<unsigned int>(count);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getUVBorderEdges(unsigned int setId, MIntArray& edgeList) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (setId >= static_cast<unsigned int>(data->mesh.uvSetCount()))
    return MStatus::kInvalidParameter;
  const std::vector<EdgeId> edges = mesh::uvBorderEdges(data->mesh, static_cast<int>(setId));
  edgeList = api::toArray(edges);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getAssociatedUVSetTextures(const MString& uvSetName,
                                            MObjectArray& textures) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  textures.clear();  // no texture chooses its UV set here; all take the current one
  return data->mesh.findUvSet(uvSetName.asChar()) >= 0 ? MStatus::kSuccess
                                                       : MStatus::kInvalidParameter;
}
