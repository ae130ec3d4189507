// Parts of the API that ask after things this host does not have: the answers are that they are not
// there.
#include <maya/MEvaluationManager.h>
#include <maya/MEvaluationNode.h>
#include <maya/MGPUDeformerRegistry.h>

#include "host/api/core/access.h"

using namespace host;
using api::setStatus;

bool MEvaluationNode::dirtyPlugExists(const MObject&, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return false;
}
MPlug MEvaluationNode::dirtyPlug(const MObject&, MStatus* status) const {
  setStatus(status, MStatus::kInvalidParameter);
  return {};
}
MObject MEvaluationNode::dependencyNode(MStatus* status) const {
  setStatus(status, MStatus::kFailure);
  return {};
}
bool MEvaluationNode::hasAttributeBeenDirtied(const MObject&) const {
  return false;
}

bool MEvaluationManager::graphConstructionActive() {
  return false;
}
bool MEvaluationManager::evaluationInExecution(const MDGContext*) {
  return false;
}
bool MEvaluationManager::evaluationManagerActive(const MDGContext&) {
  return false;
}

MStatus MGPUDeformerRegistry::registerGPUDeformerCreator(const MString&, const MString&,
                                                         MGPUDeformerRegistrationInfo*) {
  api::rememberError(
      Error{"There is no graphics processor to deform on; nodes use their own "
            "deform function"});
  return MStatus::kFailure;
}
MStatus MGPUDeformerRegistry::deregisterGPUDeformerCreator(const MString&, const MString&) {
  return MStatus::kFailure;
}
MStatus MGPUDeformerRegistry::addConditionalAttribute(const MString&, const MString&,
                                                      const MObject&) {
  return MStatus::kFailure;
}
