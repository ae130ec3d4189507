#pragma once

#include <maya/MAngle.h>
#include <maya/MAnimCurveChange.h>
#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MTime.h>
#include <maya/MTimeArray.h>

/// Works on animation curves: their keys, tangents and what comes before and after them. Values are
/// in centimetres, radians, or plain; keys are counted from 0 in the order of their times.
class MFnAnimCurve : public MFnDependencyNode {
 public:
  enum AnimCurveType {
    kAnimCurveTA,
    kAnimCurveTL,
    kAnimCurveTT,
    kAnimCurveTU,
    kAnimCurveUA,
    kAnimCurveUL,
    kAnimCurveUT,
    kAnimCurveUU,
    kAnimCurveUnknown
  };
  enum TangentType {
    kTangentGlobal,
    kTangentFixed,
    kTangentLinear,
    kTangentFlat,
    kTangentSmooth,
    kTangentStep,
    kTangentSlow,
    kTangentFast,
    kTangentClamped,
    kTangentPlateau,
    kTangentStepNext,
    kTangentAuto
  };
  enum InfinityType { kConstant = 0, kLinear = 1, kCycle = 3, kCycleRelative = 4, kOscillate = 5 };

  MFnAnimCurve() = default;
  MFnAnimCurve(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  /// The curve that drives a plug.
  MFnAnimCurve(const MPlug& plug, MStatus* status = nullptr);
  MFn::Type type() const override { return MFn::kAnimCurve; }

  using MFnDependencyNode::create;
  /// Makes a curve and lets it drive the plug. With a modifier both come when that is done.
  MObject create(const MPlug& plug, MDGModifier* modifier = nullptr, MStatus* status = nullptr);
  MObject create(const MPlug& plug, AnimCurveType type, MDGModifier* modifier = nullptr,
                 MStatus* status = nullptr);
  MObject create(const MObject& node, const MObject& attribute, MDGModifier* modifier = nullptr,
                 MStatus* status = nullptr);
  MObject create(const MObject& node, const MObject& attribute, AnimCurveType type,
                 MDGModifier* modifier = nullptr, MStatus* status = nullptr);
  /// A curve that drives nothing yet.
  MObject create(AnimCurveType type, MDGModifier* modifier = nullptr, MStatus* status = nullptr);

  AnimCurveType animCurveType(MStatus* status = nullptr) const;
  AnimCurveType timedAnimCurveTypeForPlug(const MPlug& plug, MStatus* status = nullptr) const;
  AnimCurveType unitlessAnimCurveTypeForPlug(const MPlug& plug, MStatus* status = nullptr) const;
  bool isTimeInput(MStatus* status = nullptr) const;
  bool isUnitlessInput(MStatus* status = nullptr) const;
  bool isStatic(MStatus* status = nullptr) const;

  double evaluate(const MTime& atTime, MStatus* status = nullptr) const;
  MStatus evaluate(const MTime& atTime, double& value) const;
  MStatus evaluate(const MTime& atTime, MTime& timeValue) const;
  MStatus evaluate(double atUnitlessInput, double& value) const;
  MStatus evaluate(double atUnitlessInput, MTime& timeValue) const;

  unsigned int numKeyframes(MStatus* status = nullptr) const { return numKeys(status); }
  unsigned int numKeys(MStatus* status = nullptr) const;
  MStatus remove(unsigned int index, MAnimCurveChange* change = nullptr);
  /// Sets or replaces the key at a time. @return its index
  unsigned int addKey(const MTime& time, double value, TangentType tangentIn = kTangentGlobal,
                      TangentType tangentOut = kTangentGlobal, MAnimCurveChange* change = nullptr,
                      MStatus* status = nullptr);
  unsigned int addKey(const MTime& time, const MTime& timeValue,
                      TangentType tangentIn = kTangentGlobal,
                      TangentType tangentOut = kTangentGlobal, MAnimCurveChange* change = nullptr,
                      MStatus* status = nullptr);
  unsigned int addKey(double unitlessInput, double value, TangentType tangentIn = kTangentGlobal,
                      TangentType tangentOut = kTangentGlobal, MAnimCurveChange* change = nullptr,
                      MStatus* status = nullptr);
  MStatus addKeyframe(const MTime& time, double value, MAnimCurveChange* change = nullptr);
  MStatus addKeyframe(const MTime& time, double value, TangentType tangentIn,
                      TangentType tangentOut, MAnimCurveChange* change = nullptr);
  MStatus addKeys(const MTimeArray* times, const MDoubleArray* values,
                  TangentType tangentIn = kTangentGlobal, TangentType tangentOut = kTangentGlobal,
                  bool keepExistingKeys = false, MAnimCurveChange* change = nullptr);
  bool find(const MTime& time, unsigned int& index, MStatus* status = nullptr) const;
  bool find(double unitlessInput, unsigned int& index, MStatus* status = nullptr) const;
  unsigned int findClosest(const MTime& time, MStatus* status = nullptr) const;
  unsigned int findClosest(double unitlessInput, MStatus* status = nullptr) const;

  MTime time(unsigned int index, MStatus* status = nullptr) const;
  double value(unsigned int index, MStatus* status = nullptr) const;
  MTime timeValue(unsigned int index, MStatus* status = nullptr) const;
  double unitlessInput(unsigned int index, MStatus* status = nullptr) const;
  /// A key may not come to lie on or pass another one.
  MStatus setTime(unsigned int index, const MTime& time, MAnimCurveChange* change = nullptr);
  MStatus setUnitlessInput(unsigned int index, double input, MAnimCurveChange* change = nullptr);
  MStatus setValue(unsigned int index, double value, MAnimCurveChange* change = nullptr);
  MStatus setTimeValue(unsigned int index, const MTime& value, MAnimCurveChange* change = nullptr);

  TangentType inTangentType(unsigned int index, MStatus* status = nullptr) const;
  TangentType outTangentType(unsigned int index, MStatus* status = nullptr) const;
  MStatus setInTangentType(unsigned int index, TangentType type,
                           MAnimCurveChange* change = nullptr);
  MStatus setOutTangentType(unsigned int index, TangentType type,
                            MAnimCurveChange* change = nullptr);
  MStatus setTangentTypes(const MIntArray* indices, TangentType tangentIn = kTangentGlobal,
                          TangentType tangentOut = kTangentGlobal,
                          MAnimCurveChange* change = nullptr);
  /// A tangent as run and rise: seconds, and what values are in.
  MStatus getTangent(unsigned int index, float& x, float& y, bool inTangent) const;
  MStatus getTangent(unsigned int index, MAngle& angle, double& weight, bool inTangent) const;
  /// Makes the side's tangent a fixed one.
  MStatus setTangent(unsigned int index, float x, float y, bool inTangent,
                     MAnimCurveChange* change = nullptr, bool convertUnits = true);
  MStatus setTangent(unsigned int index, const MAngle& angle, double weight, bool inTangent,
                     MAnimCurveChange* change = nullptr, bool convertUnits = true);
  MStatus setAngle(unsigned int index, const MAngle& angle, bool inTangent,
                   MAnimCurveChange* change = nullptr);
  bool isWeighted(MStatus* status = nullptr) const;
  MStatus setIsWeighted(bool isWeighted, MAnimCurveChange* change = nullptr);

  InfinityType preInfinityType(MStatus* status = nullptr) const;
  InfinityType postInfinityType(MStatus* status = nullptr) const;
  MStatus setPreInfinityType(InfinityType type, MAnimCurveChange* change = nullptr);
  MStatus setPostInfinityType(InfinityType type, MAnimCurveChange* change = nullptr);
};
