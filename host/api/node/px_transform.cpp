#include <maya/MDataBlock.h>
#include <maya/MPxTransform.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "host/api/data/data_handle.h"
#include "host/api/node/px_node.h"
#include "host/api/value/transform_parts.h"
#include "host/nodes/transform.h"

using namespace host;

namespace host::api {

namespace {

dg::Node* nodeBehind(const MPxTransform& object) {
  const auto* rep = Access::rep<PxNodeRep>(object);
  return rep ? rep->node : nullptr;
}

void forEachLeaf(const dg::Plug& plug, const std::function<void(const dg::Plug&)>& visit) {
  if (plug.isArray()) return;
  if (!plug.isCompound()) return visit(plug);
  for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
    forEachLeaf(plug.child(static_cast<int>(i)), visit);
}

struct Raised {
  explicit Raised(bool& flagIn) : flag(flagIn) { flag = true; }
  ~Raised() { flag = false; }
  bool& flag;
};

}  // namespace

bool isValidated(const NodeClass& nodeClass, const dg::Attribute& attribute) {
  for (const dg::Attribute* each = &attribute; each; each = each->parent)
    if (std::ranges::find(nodeClass.validated, each) != nodeClass.validated.end()) return true;
  return false;
}

Result<bool> validateAndSet(MPxTransform& object, const dg::Node& node, const dg::Plug& plug,
                            const dg::Value& value, bool isForMatrix) {
  // What the class writes to its own plug while it looks at a value is stored as it is; but a value
  // that was set before stays one that was set, when it is only looked at for the matrix.
  struct Look {
    const MPxTransform* object = nullptr;
    bool isForMatrix = false;
  };
  static Look looking;
  if (looking.object == &object) return looking.isForMatrix && !node.graph().isDriven(plug);
  struct Scope {
    explicit Scope(const Look& now) : before(std::exchange(looking, now)) {}
    ~Scope() { looking = before; }
    Look before;
  } const scope({&object, isForMatrix});
  const MDataHandle handle = looseHandle(plug, value);
  const auto call = [&] {
    return object.validateAndSetValue(wrap(plug), handle, MDGContext::fsNormal);
  };
  const MStatus status = fenced(node, "validateAndSetValue", call, MStatus(MStatus::kFailure));
  if (status == MStatus::kSuccess) return true;
  if (status == MStatus::kUnknownParameter) return false;
  return fail("'{}' does not take that value", plug.name());
}

}  // namespace host::api

MPxTransform::MPxTransform() = default;
MPxTransform::MPxTransform(MPxTransformationMatrix* own) : ownMatrix_(own) {}
MPxTransform::~MPxTransform() {
  delete ownMatrix_;
}

MStatus MPxTransform::compute(const MPlug& plug, MDataBlock& block) {
  const dg::Plug asked = api::plugOf(plug);
  dg::Node* node = asked.node();
  if (!node || asked.isElement()) return MStatus::kUnknownParameter;
  const std::string& wanted = asked.attribute()->longName;
  if (wanted != "matrix" && wanted != "xformMatrix") return MStatus::kUnknownParameter;
  MPxTransformationMatrix* own = transformationMatrixPtr();
  if (!own) return MStatus::kUnknownParameter;
  const MStatus status = computeLocalTransformation(own, block);
  if (!status) return status;
  block.outputValue(plug).set(own->asMatrix());
  block.setClean(plug);
  return MStatus::kSuccess;
}
MStatus MPxTransform::computeLocalTransformation(MPxTransformationMatrix* own, MDataBlock&) {
  dg::Node* node = api::nodeBehind(*this);
  if (!node || !own) return MStatus::kFailure;
  const auto parts = nodes::readTransform(*node);
  if (!parts) return api::toStatus(parts);
  own->assign(api::TransformParts::make(*parts));
  const auto* rep = api::Access::rep<api::PxNodeRep>(*this);
  if (!rep->nodeClass) return MStatus::kSuccess;
  const api::Raised computing(isComputing_);
  MStatus status;
  for (const dg::Attribute* attribute : rep->nodeClass->validated)
    api::forEachLeaf(dg::Plug(node, attribute), [&](const dg::Plug& leaf) {
      const auto value = node->graph().get(leaf);
      const auto taken =
          value ? api::validateAndSet(*this, *node, leaf, *value, true) : failWith(value.error());
      if (!taken) status = api::toStatus(taken);
    });
  return status;
}

MPxTransformationMatrix* MPxTransform::createTransformationMatrix() {
  const auto* rep = api::Access::rep<api::PxNodeRep>(*this);
  const MCreatorFunction creator = rep && rep->nodeClass ? rep->nodeClass->matrixCreator : nullptr;
  if (creator) return static_cast<MPxTransformationMatrix*>(creator());
  return new MPxTransformationMatrix;
}
MPxTransformationMatrix* MPxTransform::transformationMatrixPtr() const {
  auto& self = const_cast<MPxTransform&>(*this);
  if (!ownMatrix_) self.ownMatrix_ = self.createTransformationMatrix();
  return ownMatrix_;
}
void MPxTransform::resetTransformation(MPxTransformationMatrix* own) {
  if (!own || own == ownMatrix_) return;
  delete ownMatrix_;
  ownMatrix_ = own;
  updateMatrixAttrs();
}
void MPxTransform::resetTransformation(const MMatrix& own) {
  transformationMatrixPtr()->assign(own);
  updateMatrixAttrs();
}

MStatus MPxTransform::validateAndSetValue(const MPlug& plug, const MDataHandle& handle,
                                          const MDGContext&) {
  return validateAndSetValue(plug, handle);
}
MStatus MPxTransform::validateAndSetValue(const MPlug&, const MDataHandle&) {
  // Unchanged: the graph stores it.
  return MStatus::kUnknownParameter;
}
void MPxTransform::dirtyMatrix() {
  dg::Node* node = api::nodeBehind(*this);
  if (!node || isComputing_) return;
  node->graph().dirty(node->plug("matrix"));
  node->graph().dirty(node->plug("xformMatrix"));
}
MStatus MPxTransform::updateMatrixAttrs(MPxTransformationMatrix* own) {
  dg::Node* node = api::nodeBehind(*this);
  if (!own) own = transformationMatrixPtr();
  if (!node || !own || isComputing_) return MStatus::kFailure;
  return api::toStatus(
      nodes::writeTransform(*node, api::TransformParts::of(own->asTransformationMatrix())));
}

bool MPxTransform::isBounded() const {
  return false;
}
MBoundingBox MPxTransform::boundingBox() const {
  return {};
}
bool MPxTransform::treatAsTransform() const {
  return true;
}
