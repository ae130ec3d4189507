#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

class MGPUDeformerRegistrationInfo;

/// Registers deformers that run on a graphics processor. None is there: nodes deform by their own
/// `deform`, and registering says so.
class MGPUDeformerRegistry {
 public:
  static MStatus registerGPUDeformerCreator(const MString& nodeClassName,
                                            const MString& registrantId,
                                            MGPUDeformerRegistrationInfo* registrationInfo);
  static MStatus deregisterGPUDeformerCreator(const MString& nodeClassName,
                                              const MString& registrantId);
  static MStatus addConditionalAttribute(const MString& nodeClassName, const MString& registrantId,
                                         const class MObject& attribute);
};
