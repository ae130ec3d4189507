#pragma once

#include <maya/MFnBase.h>
#include <maya/MTypes.h>
#include <maya/MWeight.h>

/// Works on component lists.
class MFnComponent : public MFnBase {
 public:
  MFnComponent() = default;
  MFnComponent(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kComponent; }

  int elementCount(MStatus* status = nullptr) const;
  MFn::Type componentType(MStatus* status = nullptr) const;
  bool isEmpty() const;
  bool isEqual(const MObject& component, MStatus* status = nullptr) const;
  /// True for a list that stands for all components without naming them.
  bool isComplete(MStatus* status = nullptr) const;
  MStatus setComplete(bool complete);
  bool hasWeights() const;
  MWeight weight(int index, MStatus* status = nullptr) const;
  MStatus setWeight(int index, const MWeight& weight);
};
