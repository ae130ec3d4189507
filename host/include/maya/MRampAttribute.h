#pragma once

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/detail/Handle.h>

/// Works on ramps: arrays of entries with a position, a value or colour, and an interpolation.
class MRampAttribute {
 public:
  enum MInterpolation { kNone = 0, kLinear = 1, kSmooth = 2, kSpline = 3 };

  MRampAttribute();
  MRampAttribute(const MPlug& plug, MStatus* status = nullptr);
  MRampAttribute(const MObject& node, const MObject& attribute, MStatus* status = nullptr);
  MRampAttribute(const MRampAttribute& other);
  ~MRampAttribute();
  MRampAttribute& operator=(const MRampAttribute& other);

  /// Makes the attribute of a ramp of colours, for `MPxNode::addAttribute`.
  static MObject createColorRamp(const MString& attrLongName, const MString& attrShortName,
                                 MStatus* status = nullptr);
  static MObject createRamp(const MString& attrLongName, const MString& attrShortName,
                            MStatus* status = nullptr);
  /// Makes the attribute of a ramp of numbers.
  static MObject createCurveRamp(const MString& attrLongName, const MString& attrShortName,
                                 MStatus* status = nullptr);

  unsigned int getNumEntries(MStatus* status = nullptr);
  void getEntries(MIntArray& indexes, MFloatArray& positions, MColorArray& colors,
                  MIntArray& interps, MStatus* status = nullptr);
  void getEntries(MIntArray& indexes, MFloatArray& positions, MFloatArray& values,
                  MIntArray& interps, MStatus* status = nullptr);
  void addEntries(MFloatArray& positions, MColorArray& colors, MIntArray& interps,
                  MStatus* status = nullptr);
  void addEntries(MFloatArray& positions, MFloatArray& values, MIntArray& interps,
                  MStatus* status = nullptr);
  void deleteEntries(MIntArray& indexes, MStatus* status = nullptr);
  void setColorAtIndex(MColor& color, unsigned int index, MStatus* status = nullptr);
  void setValueAtIndex(float value, unsigned int index, MStatus* status = nullptr);
  void setPositionAtIndex(float position, unsigned int index, MStatus* status = nullptr);
  void setInterpolationAtIndex(MInterpolation interp, unsigned int index,
                               MStatus* status = nullptr);
  void getColorAtPosition(float position, MColor& color, MStatus* status = nullptr);
  void getValueAtPosition(float position, float& value, MStatus* status = nullptr);
  /// Replaces all entries.
  MStatus setRamp(const MFloatArray& values, const MFloatArray& positions,
                  const MIntArray& interps);
  MStatus setRamp(const MColorArray& colors, const MFloatArray& positions,
                  const MIntArray& interps);
  void sort(bool ascending, MStatus* status = nullptr);
  void pack(MStatus* status = nullptr);
  bool hasIndex(unsigned int index, MStatus* status = nullptr);
  bool isColorRamp(MStatus* status = nullptr);
  bool isCurveRamp(MStatus* status = nullptr);
  MStatus sampleColorRamp(unsigned int numSamples, MColorArray& samples);
  MStatus sampleValueRamp(unsigned int numSamples, MFloatArray& samples);

 private:
  MPlug plug_;
};
