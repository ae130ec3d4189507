#include <maya/MFnMesh.h>
#include <maya/MPlug.h>
#include <maya/MStringArray.h>

#include "host/api/mesh/fn_mesh.h"

namespace host::api {
namespace {

/// `wanted`, or `wanted` with the first number that makes it a new set's name.
std::string freeSetName(const mesh::Mesh& mesh, const MString& wanted) {
  const std::string base = wanted.length() > 0 ? toStd(wanted) : "colorSet";
  std::string name = base;
  for (int number = 1; mesh.findColorSet(name) >= 0; ++number) name = base + std::to_string(number);
  return name;
}

/// Adds a set and gives it back the name it got; empty when it failed.
MString addColorSet(const MFnMesh& set, const MString& wanted, int representation, bool clamped,
                    MDGModifier* modifier, MStatus* status) {
  std::string name;
  const MStatus done = editAttributes(set, modifier, [&](mesh::Mesh& mesh) {
    name = freeSetName(mesh, wanted);
    mesh.addColorSet({name, representation, clamped, {}, {}});
    return MStatus::kSuccess;
  });
  setStatus(status, done.statusCode());
  return done ? toMString(name) : MString();
}

const mesh::ColorSet* namedSet(const scene::MeshDataPtr& data, const MString& name,
                               MStatus* status) {
  const int set = data ? data->mesh.findColorSet(name.asChar()) : -1;
  if (data && set < 0) setStatus(status, MStatus::kInvalidParameter);
  return set < 0 ? nullptr : &data->mesh.colorSet(set);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::editAttributes;
using api::readMesh;
using api::setStatus;
using api::toMString;

int MFnMesh::numColorSets(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? data->mesh.colorSetCount() : 0;
}
MStatus MFnMesh::getColorSetNames(MStringArray& setNames) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  setNames.clear();
  for (int i = 0; i < data->mesh.colorSetCount(); ++i)
    setNames.append(toMString(data->mesh.colorSet(i).name));
  return MStatus::kSuccess;
}
MString MFnMesh::currentColorSetName(int, MStatus* status) const {
  const auto data = readMesh(*this, status);
  const int set = data ? data->mesh.currentColorSet() : -1;
  return set < 0 ? MString() : toMString(data->mesh.colorSet(set).name);
}
MStatus MFnMesh::getCurrentColorSetName(MString& setName, int instance) const {
  MStatus status;
  setName = currentColorSetName(instance, &status);
  return status;
}
MStatus MFnMesh::setCurrentColorSetName(const MString& setName, MDGModifier* modifier,
                                        MSelectionList*) {
  return editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    const int set = mesh.findColorSet(setName.asChar());
    if (set < 0) return MStatus::kInvalidParameter;
    mesh.setCurrentColorSet(set);
    return MStatus::kSuccess;
  });
}
MString MFnMesh::createColorSetWithName(const MString& colorSetName, MDGModifier* modifier,
                                        MStatus* status) {
  return api::addColorSet(*this, colorSetName, kRGBA, false, modifier, status);
}
MString MFnMesh::createColorSetWithName(const MString& colorSetName, MDGModifier* modifier,
                                        const MUintArray*, MStatus* status) {
  return createColorSetWithName(colorSetName, modifier, status);
}
MStatus MFnMesh::createColorSet(MString& colorSetName, MDGModifier* modifier,
                                const MUintArray* instances) {
  return createColorSet(colorSetName, modifier, false, kRGBA, instances);
}
MStatus MFnMesh::createColorSet(MString& colorSetName, MDGModifier* modifier, bool clamped,
                                MColorRepresentation rep, const MUintArray*) {
  MStatus status;
  const MString made = api::addColorSet(*this, colorSetName, rep, clamped, modifier, &status);
  if (status) colorSetName = made;
  return status;
}
MStatus MFnMesh::deleteColorSet(const MString& setName, MDGModifier* modifier, MSelectionList*) {
  return editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    const int set = mesh.findColorSet(setName.asChar());
    if (set < 0) return MStatus::kInvalidParameter;
    mesh.removeColorSet(set);
    return MStatus::kSuccess;
  });
}
MFnMesh::MColorRepresentation MFnMesh::getColorRepresentation(const MString& colorSet,
                                                              MStatus* status) const {
  const auto data = readMesh(*this, status);
  const mesh::ColorSet* set = api::namedSet(data, colorSet, status);
  return set ? static_cast<MColorRepresentation>(set->representation) : kRGBA;
}
bool MFnMesh::isColorClamped(const MString& colorSet, MStatus* status) const {
  const auto data = readMesh(*this, status);
  const mesh::ColorSet* set = api::namedSet(data, colorSet, status);
  return set && set->clamped;
}
bool MFnMesh::hasAlphaChannels(MStatus* status) const {
  const auto data = readMesh(*this, status);
  for (int i = 0; data && i < data->mesh.colorSetCount(); ++i)
    if (data->mesh.colorSet(i).representation != kRGB) return true;
  return false;
}

bool MFnMesh::displayColors(MStatus* status) const {
  dg::Node* shape = api::targetOf(*this).shape();
  setStatus(status, shape ? MStatus::kSuccess : MStatus::kFailure);
  return shape && api::wrap(shape->plug("displayColors")).asBool();
}
MStatus MFnMesh::setDisplayColors(bool enable) {
  dg::Node* shape = api::targetOf(*this).shape();
  return shape ? api::wrap(shape->plug("displayColors")).setBool(enable)
               : MStatus(MStatus::kFailure);
}
