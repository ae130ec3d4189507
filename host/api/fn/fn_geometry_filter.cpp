#include <maya/MFnWeightGeometryFilter.h>
#include <maya/MSelectionList.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/mesh/components.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

using namespace host;
using api::setStatus;

namespace {

dg::Node* filterIn(const MObject& object, MStatus* status = nullptr) {
  dg::Node* node = api::nodeOf(object);
  const bool isFilter = node && node->isAlive() && node->type().isA("geometryFilter");
  setStatus(status, isFilter ? MStatus::kSuccess : MStatus::kFailure);
  return isFilter ? node : nullptr;
}

/// The geometry's shape; null when there is no such geometry.
dg::Node* shapeAt(const MObject& object, unsigned int index, MStatus* status) {
  dg::Node* filter = filterIn(object, status);
  if (!filter) return nullptr;
  for (const auto& [number, shape] : nodes::deformedShapes(*filter))
    if (number == static_cast<Index>(index)) return shape;
  setStatus(status, MStatus::kInvalidParameter);
  return nullptr;
}

int indexOf(dg::Node& filter, const dg::Node* shape) {
  for (const auto& [number, other] : nodes::deformedShapes(filter))
    if (other == shape) return static_cast<int>(number);
  return -1;
}

const dg::Node* shapeOf(const MDagPath& path) {
  const scene::DagPath& own = api::pathOf(path);
  const scene::DagPath shape = own.toShape();
  return shape.isWorld() ? own.node() : shape.node();
}

dg::Plug weightsOf(dg::Node& filter, int geometry) {
  const dg::Plug lists = filter.plug("weightList");
  if (!lists) return {};
  return lists.element(static_cast<Index>(geometry)).child(lists.attribute()->find("weights"));
}

/// The points that a component names, of a whole geometry when it names none.
std::vector<Index> pointsOf(dg::Node& shape, const MObject& component) {
  const auto mesh = nodes::evaluatedMesh(shape);
  if (!mesh) return {};
  const scene::Component* wanted = api::componentOf(component);
  const scene::Component all = scene::Component::all(scene::ComponentType::Vertex);
  const scene::Component& named = wanted ? *wanted : all;
  return mesh::convertComponents(*mesh, named.type(), nodes::componentIds(*mesh, named),
                                 mesh::ComponentType::Vertex);
}

float weightAt(dg::Graph& graph, const dg::Plug& weights, Index point) {
  const dg::Plug element = weights.element(point);
  if (!graph.elementExists(element)) return 1;
  const auto value = graph.get(element);
  const auto* number = value ? std::get_if<double>(&*value) : nullptr;
  return number ? static_cast<float>(*number) : 1.0F;
}

}  // namespace

MStatus MFnGeometryFilter::getInputGeometry(MObjectArray& objects) const {
  return getOutputGeometry(objects);
}
MStatus MFnGeometryFilter::getOutputGeometry(MObjectArray& objects) const {
  objects.clear();
  MStatus status;
  dg::Node* filter = filterIn(object_, &status);
  if (filter)
    for (const auto& [number, shape] : nodes::deformedShapes(*filter))
      objects.append(api::wrap(shape));
  return status;
}
MObject MFnGeometryFilter::inputShapeAtIndex(unsigned int index, MStatus* status) const {
  return outputShapeAtIndex(index, status);
}
MObject MFnGeometryFilter::outputShapeAtIndex(unsigned int index, MStatus* status) const {
  dg::Node* shape = shapeAt(object_, index, status);
  return shape ? api::wrap(shape) : MObject();
}
unsigned int MFnGeometryFilter::indexForOutputShape(const MObject& shape, MStatus* status) const {
  dg::Node* filter = filterIn(object_, status);
  const int index = filter ? indexOf(*filter, api::nodeOf(shape)) : -1;
  if (index < 0) setStatus(status, MStatus::kInvalidParameter);
  return index < 0 ? 0 : static_cast<unsigned int>(index);
}
unsigned int MFnGeometryFilter::indexForOutputConnection(unsigned int connectionIndex,
                                                         MStatus* status) const {
  dg::Node* filter = filterIn(object_, status);
  const auto shapes =
      filter ? nodes::deformedShapes(*filter) : std::vector<std::pair<Index, dg::Node*>>();
  if (connectionIndex < shapes.size())
    return static_cast<unsigned int>(shapes[connectionIndex].first);
  setStatus(status, MStatus::kInvalidParameter);
  return 0;
}
unsigned int MFnGeometryFilter::numOutputConnections(MStatus* status) const {
  dg::Node* filter = filterIn(object_, status);
  return filter ? static_cast<unsigned int>(nodes::deformedShapes(*filter).size()) : 0;
}
MStatus MFnGeometryFilter::getPathAtIndex(unsigned int index, MDagPath& path) const {
  MStatus status;
  dg::Node* shape = shapeAt(object_, index, &status);
  if (shape) path = api::wrap(scene::firstPath(*shape));
  return status;
}
float MFnGeometryFilter::envelope(MStatus* status) const {
  dg::Node* filter = filterIn(object_, status);
  const auto value = filter ? filter->graph().get(filter->plug("envelope")) : dg::Value(1.0);
  const auto* number = value ? std::get_if<double>(&*value) : nullptr;
  return number ? static_cast<float>(*number) : 1.0F;
}
MStatus MFnGeometryFilter::setEnvelope(float envelope) {
  dg::Node* filter = filterIn(object_);
  if (!filter) return MStatus::kFailure;
  return api::toStatus(
      filter->graph().set(filter->plug("envelope"), static_cast<double>(envelope)));
}
MObject MFnGeometryFilter::deformerSet(MStatus* status) const {
  // Which components are deformed stands in the groupParts node, not in a set.
  setStatus(status, MStatus::kFailure);
  return {};
}

MStatus MFnWeightGeometryFilter::getWeights(const MDagPath& path, const MObject& component,
                                            MFloatArray& weights) const {
  dg::Node* filter = filterIn(object_);
  const int index = filter ? indexOf(*filter, shapeOf(path)) : -1;
  if (index < 0) return MStatus::kInvalidParameter;
  return getWeights(static_cast<unsigned int>(index), component, weights);
}
MStatus MFnWeightGeometryFilter::getWeights(unsigned int index, const MObject& component,
                                            MFloatArray& weights) const {
  weights.clear();
  MStatus status;
  dg::Node* shape = shapeAt(object_, index, &status);
  if (!shape) return status;
  dg::Node& filter = *filterIn(object_);
  const dg::Plug own = weightsOf(filter, static_cast<int>(index));
  if (!own) return MStatus::kFailure;
  for (const Index point : pointsOf(*shape, component))
    weights.append(weightAt(filter.graph(), own, point));
  return MStatus::kSuccess;
}
MStatus MFnWeightGeometryFilter::setWeight(const MDagPath& path, const MObject& component,
                                           float weight, MFloatArray* oldValues) {
  dg::Node* filter = filterIn(object_);
  const int index = filter ? indexOf(*filter, shapeOf(path)) : -1;
  if (index < 0) return MStatus::kInvalidParameter;
  return setWeight(path, static_cast<unsigned int>(index), component, weight, oldValues);
}
MStatus MFnWeightGeometryFilter::setWeight(const MDagPath& path, const MObject& component,
                                           const MFloatArray& weights) {
  dg::Node* filter = filterIn(object_);
  const int index = filter ? indexOf(*filter, shapeOf(path)) : -1;
  if (index < 0) return MStatus::kInvalidParameter;
  return setWeight(path, static_cast<unsigned int>(index), component, weights);
}
MStatus MFnWeightGeometryFilter::setWeight(const MDagPath& path, unsigned int index,
                                           const MObject& component, float weight,
                                           MFloatArray* oldValues) {
  if (oldValues) {
    const MStatus read = getWeights(index, component, *oldValues);
    if (!read) return read;
  }
  MStatus status;
  dg::Node* shape = shapeAt(object_, index, &status);
  if (!shape) return status;
  const auto count = static_cast<unsigned int>(pointsOf(*shape, component).size());
  return setWeight(path, index, component, MFloatArray(count, weight));
}
MStatus MFnWeightGeometryFilter::setWeight(const MDagPath&, unsigned int index,
                                           const MObject& component, const MFloatArray& weights) {
  MStatus status;
  dg::Node* shape = shapeAt(object_, index, &status);
  if (!shape) return status;
  dg::Node& filter = *filterIn(object_);
  const dg::Plug own = weightsOf(filter, static_cast<int>(index));
  const std::vector<Index> points = pointsOf(*shape, component);
  if (!own || points.size() != weights.length()) return MStatus::kInvalidParameter;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto set = filter.graph().set(own.element(points[i]),
                                        static_cast<double>(weights[static_cast<unsigned int>(i)]));
    if (!set) return api::toStatus(set);
  }
  return MStatus::kSuccess;
}
MStatus MFnWeightGeometryFilter::getEnvelopeWeights(MFloatArray& weights) const {
  return getWeights(0, MObject(), weights);
}
MString MFnWeightGeometryFilter::weightPlugStrings(const MSelectionList& list,
                                                   MStatus* status) const {
  dg::Node* filter = filterIn(object_, status);
  MString names;
  if (!filter) return names;
  for (const scene::SelectionItem& item : api::listOf(list).items()) {
    if (!item.isDag()) continue;
    const scene::DagPath shape = item.path.toShape();
    const int index = shape.isWorld() ? -1 : indexOf(*filter, shape.node());
    if (index < 0) continue;
    for (const Index point : pointsOf(*shape.node(), MObject()))
      names += api::toMString(
          fmt::format("{}.weightList[{}].weights[{}] ", filter->name(), index, point));
  }
  return names;
}
