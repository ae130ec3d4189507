#pragma once

#include <maya/MTypes.h>

class MDGContext;

/// Asks after evaluation graphs; there are none here.
class MEvaluationManager {
 public:
  static bool graphConstructionActive();
  static bool evaluationInExecution(const MDGContext* context = nullptr);
  static bool evaluationManagerActive(const MDGContext& context);
};
