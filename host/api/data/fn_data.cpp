#include <maya/MFnComponentListData.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnStringData.h>

#include <algorithm>
#include <memory>

#include "host/api/core/access.h"
#include "host/api/data/numeric_data.h"
#include "host/scene/mesh_data.h"

using namespace host;
using api::setStatus;

namespace {

/// A matrix as the function set hands it out by reference.
struct MatrixRep final : api::SharedRep {
  MMatrix matrix;
};

const dg::MatrixData* matrixOf(const MObject& object, MStatus* status = nullptr) {
  const auto* rep = api::objectAs<api::DataRep>(object);
  const auto* data = rep ? dynamic_cast<const dg::MatrixData*>(rep->data.get()) : nullptr;
  setStatus(status, data ? MStatus::kSuccess : MStatus::kFailure);
  return data;
}

MObject makeMatrix(const MMatrix& matrix, MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::wrap(dg::DataPtr(std::make_shared<dg::MatrixData>(api::toMatrix4(matrix))));
}

const scene::ComponentListData* componentsOf(const MObject& object, MStatus* status = nullptr) {
  const auto* rep = api::objectAs<api::DataRep>(object);
  const auto* data = rep ? dynamic_cast<const scene::ComponentListData*>(rep->data.get()) : nullptr;
  setStatus(status, data ? MStatus::kSuccess : MStatus::kFailure);
  return data;
}

MStatus setComponents(const MObject& object, std::vector<scene::Component> components) {
  auto* rep = api::objectAs<api::DataRep>(object);
  if (!rep) return MStatus::kFailure;
  rep->data = std::make_shared<scene::ComponentListData>(std::move(components));
  return MStatus::kSuccess;
}

}  // namespace

MObject MFnMeshData::create(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return object_ = api::wrap(dg::DataPtr(std::make_shared<scene::MeshData>(mesh::Mesh())));
}

MObject MFnStringData::create(MStatus* status) {
  return create(MString(), status);
}
MObject MFnStringData::create(const MString& text, MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return object_ = api::wrap(api::makeStringData(api::toStd(text)));
}
MString MFnStringData::string(MStatus* status) const {
  const auto* rep = api::objectAs<api::DataRep>(object_);
  const std::string* text = rep ? api::stringOf(rep->data) : nullptr;
  setStatus(status, text ? MStatus::kSuccess : MStatus::kFailure);
  return text ? api::toMString(*text) : MString();
}
MStatus MFnStringData::set(const MString& text) {
  auto* rep = api::objectAs<api::DataRep>(object_);
  if (!rep) return MStatus::kFailure;
  rep->data = api::makeStringData(api::toStd(text));
  return MStatus::kSuccess;
}

MObject MFnMatrixData::create(MStatus* status) {
  return object_ = makeMatrix(MMatrix(), status);
}
MObject MFnMatrixData::create(const MMatrix& matrix, MStatus* status) {
  return object_ = makeMatrix(matrix, status);
}
MObject MFnMatrixData::create(const MTransformationMatrix& transform, MStatus* status) {
  return object_ = makeMatrix(transform.asMatrix(), status);
}
bool MFnMatrixData::isTransformation(MStatus* status) const {
  (void)matrixOf(object_, status);
  return false;  // transforms are stored as the matrix that they come to
}
MTransformationMatrix MFnMatrixData::transformation(MStatus* status) const {
  return MTransformationMatrix(matrix(status));
}
const MMatrix& MFnMatrixData::matrix(MStatus* status) const {
  const dg::MatrixData* data = matrixOf(object_, status);
  if (!data) return MMatrix::identity;
  if (!handle_) const_cast<MFnMatrixData*>(this)->handle_ = api::Handle(new MatrixRep);
  auto* form = static_cast<MatrixRep*>(handle_.get());
  form->matrix = api::toMMatrix(data->value);
  return form->matrix;
}
MStatus MFnMatrixData::set(const MMatrix& matrix) {
  auto* rep = api::objectAs<api::DataRep>(object_);
  if (!rep) return MStatus::kFailure;
  rep->data = std::make_shared<dg::MatrixData>(api::toMatrix4(matrix));
  return MStatus::kSuccess;
}
MStatus MFnMatrixData::set(const MTransformationMatrix& transform) {
  return set(transform.asMatrix());
}

MObject MFnComponentListData::create(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return object_ = api::wrap(dg::DataPtr(
             std::make_shared<scene::ComponentListData>(std::vector<scene::Component>())));
}
unsigned int MFnComponentListData::length(MStatus* status) const {
  const auto* data = componentsOf(object_, status);
  return data ? static_cast<unsigned int>(data->value.size()) : 0;
}
MObject MFnComponentListData::get(unsigned int index, MStatus* status) const {
  const auto* data = componentsOf(object_, status);
  if (data && index < data->value.size()) return api::wrap(data->value[index]);
  setStatus(status, data ? MStatus::kInvalidParameter : MStatus::kFailure);
  return MObject();
}
bool MFnComponentListData::has(const MObject& component, MStatus* status) const {
  const auto* data = componentsOf(object_, status);
  const scene::Component* wanted = api::componentOf(component);
  return data && wanted &&
         std::find(data->value.begin(), data->value.end(), *wanted) != data->value.end();
}
MStatus MFnComponentListData::add(const MObject& component) {
  const auto* data = componentsOf(object_);
  const scene::Component* added = api::componentOf(component);
  if (!data || !added) return MStatus::kInvalidParameter;
  std::vector<scene::Component> all = data->value;
  all.push_back(*added);
  return setComponents(object_, std::move(all));
}
MStatus MFnComponentListData::remove(const MObject& component) {
  const auto* data = componentsOf(object_);
  const scene::Component* wanted = api::componentOf(component);
  if (!data || !wanted) return MStatus::kInvalidParameter;
  std::vector<scene::Component> all = data->value;
  if (std::erase(all, *wanted) == 0) return MStatus::kInvalidParameter;
  return setComponents(object_, std::move(all));
}
MStatus MFnComponentListData::remove(unsigned int index) {
  const auto* data = componentsOf(object_);
  if (!data || index >= data->value.size()) return MStatus::kInvalidParameter;
  std::vector<scene::Component> all = data->value;
  all.erase(all.begin() + index);
  return setComponents(object_, std::move(all));
}
MStatus MFnComponentListData::clear() {
  return setComponents(object_, {});
}
