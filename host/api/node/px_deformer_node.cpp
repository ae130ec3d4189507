#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MPxDeformerNode.h>

#include "host/api/core/access.h"
#include "host/api/mesh/it_geometry.h"
#include "host/math/matrix4.h"
#include "host/nodes/history/deformers.h"

using namespace host;

namespace {

/// Geometry `index` of a deformer below `input`.
dg::Plug inputOf(dg::Node& node, Index index, std::string_view child) {
  const dg::Plug inputs = node.plug("input");
  return inputs.element(index).child(inputs.attribute()->find(child));
}

constexpr std::int64_t kHasNoEffect = 1;

}  // namespace

MObject MPxGeometryFilter::input;
MObject MPxGeometryFilter::inputGeom;
MObject MPxGeometryFilter::groupId;
MObject MPxGeometryFilter::outputGeom;
MObject MPxGeometryFilter::envelope;
MObject MPxDeformerNode::weightList;
MObject MPxDeformerNode::weights;

MPxGeometryFilter::MPxGeometryFilter() = default;
MPxGeometryFilter::~MPxGeometryFilter() = default;

MStatus MPxGeometryFilter::compute(const MPlug& plug, MDataBlock& block) {
  const dg::Plug own = api::plugOf(plug);
  dg::Node* node = own.node();
  if (!node || own.attribute()->longName != "outputGeometry" || !own.isElement())
    return MStatus::kUnknownParameter;
  const Index index = own.logicalIndex();
  MStatus status;
  const MDataHandle arriving =
      block.inputValue(api::wrap(inputOf(*node, index, "inputGeometry")), &status);
  if (!status) return status;
  MDataHandle leaving = block.outputValue(plug, &status);
  if (!status) return status;
  leaving.copy(arriving);
  const auto stateNow = node->graph().get(node->plug("nodeState"));
  const bool acts = !stateNow || !dg::equal(*stateNow, kHasNoEffect);
  if (acts && !arriving.data().isNull()) {
    const auto matrix = node->graph().get(inputOf(*node, index, "geometryMatrix"));
    const auto* space = matrix ? dg::dataAs<dg::MatrixData>(*matrix) : nullptr;
    MItGeometry points(leaving, 0, false, &status);
    if (!status) return status;
    if (const auto components = nodes::deformedComponents(*node, index))
      api::limitTo(points, components->value);
    status = deform(block, points, space ? api::toMMatrix(space->value) : MMatrix(),
                    static_cast<unsigned int>(index));
    if (!status) return status;
    const MStatus written = api::flush(points);
    if (!written) return written;
  }
  leaving.setClean();
  return MStatus::kSuccess;
}

MStatus MPxGeometryFilter::deform(MDataBlock&, MItGeometry&, const MMatrix&, unsigned int) {
  return MStatus::kSuccess;
}
MObject& MPxGeometryFilter::accessoryAttribute() const {
  static MObject none;
  none = MObject();
  return none;
}
MStatus MPxGeometryFilter::accessoryNodeSetup(MDagModifier&) {
  return MStatus::kSuccess;
}
void MPxGeometryFilter::setUseExistingConnectionWhenSetEditing(bool) {}
void MPxGeometryFilter::setDeformationDetails(unsigned int flags) {
  details_ = flags;
}
unsigned int MPxGeometryFilter::getDeformationDetails() const {
  return details_;
}

MPxDeformerNode::MPxDeformerNode() = default;
MPxDeformerNode::~MPxDeformerNode() = default;

float MPxDeformerNode::weightValue(MDataBlock&, unsigned int multiIndex, unsigned int wtIndex) {
  dg::Node* node = api::nodeOf(thisMObject());
  if (!node) return 1;
  const dg::Plug lists = node->plug("weightList");
  const dg::Plug list =
      lists.element(static_cast<Index>(multiIndex)).child(lists.attribute()->find("weights"));
  const dg::Plug weight = list.element(static_cast<Index>(wtIndex));
  if (!node->graph().elementExists(weight)) return 1;
  const auto value = node->graph().get(weight);
  const auto* number = value ? std::get_if<double>(&*value) : nullptr;
  return number ? static_cast<float>(*number) : 1.0F;
}
