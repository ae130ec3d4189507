#pragma once

#include <maya/MFnData.h>
#include <maya/MObject.h>
#include <maya/MTypes.h>

/// Works on data that holds component lists.
class MFnComponentListData : public MFnData {
 public:
  MFnComponentListData() = default;
  MFnComponentListData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kComponentListData; }

  MObject create(MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  MObject operator[](unsigned int index) const { return get(index); }
  MObject get(unsigned int index, MStatus* status = nullptr) const;
  bool has(const MObject& component, MStatus* status = nullptr) const;
  MStatus add(const MObject& component);
  MStatus remove(const MObject& component);
  MStatus remove(unsigned int index);
  MStatus clear();
};
