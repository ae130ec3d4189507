#include <maya/MFnDagNode.h>

#include "host/api/core/access.h"

using namespace host;
using api::setStatus;

namespace {

dg::Plug plugOn(const MObject& object, const char* attribute, MStatus* status) {
  dg::Node* node = api::nodeOf(object);
  const dg::Plug plug = node ? node->plug(attribute) : dg::Plug();
  setStatus(status, plug.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return plug;
}

}  // namespace

// Every node of the hierarchy may be instanced here; that can't be switched off.
MStatus MFnDagNode::setInstanceable(bool how) {
  const dg::Node* node = api::nodeOf(object_);
  return node && how ? MStatus::kSuccess : MStatus::kFailure;
}
bool MFnDagNode::usingObjectColor(MStatus* status) const {
  const dg::Plug plug = plugOn(object_, "useObjectColor", status);
  return plug && api::wrap(plug).asInt(status) != 0;
}
MStatus MFnDagNode::setUseObjectColor(bool useObjectColor) {
  MStatus status;
  const dg::Plug plug = plugOn(object_, "useObjectColor", &status);
  return plug ? api::wrap(plug).setInt(useObjectColor ? 1 : 0) : status;
}
int MFnDagNode::objectColor(MStatus* status) const {
  const dg::Plug plug = plugOn(object_, "objectColor", status);
  return plug ? api::wrap(plug).asInt(status) : -1;
}
MStatus MFnDagNode::setObjectColor(int color) {
  if (color < 0 || color > 7) return MStatus::kInvalidParameter;
  MStatus status;
  const dg::Plug plug = plugOn(object_, "objectColor", &status);
  return plug ? api::wrap(plug).setInt(color) : status;
}
