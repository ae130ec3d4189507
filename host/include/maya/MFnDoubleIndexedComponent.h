#pragma once

#include <maya/MFnComponent.h>
#include <maya/MIntArray.h>
#include <maya/MTypes.h>

/// Works on lists of components with two indices, such as face corners.
class MFnDoubleIndexedComponent : public MFnComponent {
 public:
  MFnDoubleIndexedComponent() = default;
  MFnDoubleIndexedComponent(const MObject& object, MStatus* status = nullptr) {
    attach(object, status);
  }
  MFn::Type type() const override { return MFn::kDoubleIndexedComponent; }

  MObject create(MFn::Type componentType, MStatus* status = nullptr);
  MStatus addElement(int uIndex, int vIndex);
  MStatus addElements(const MIntArray& uIndices, const MIntArray& vIndices);
  MStatus getElement(int index, int& uIndex, int& vIndex) const;
  MStatus getElements(MIntArray& uIndices, MIntArray& vIndices) const;
  MStatus setCompleteData(int uSize, int vSize);
  MStatus getCompleteData(int& uSize, int& vSize) const;
};
