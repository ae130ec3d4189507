#pragma once

#include <maya/MFnComponent.h>
#include <maya/MIntArray.h>
#include <maya/MTypes.h>

/// Works on lists of components with three indices, such as lattice points.
class MFnTripleIndexedComponent : public MFnComponent {
 public:
  MFnTripleIndexedComponent() = default;
  MFnTripleIndexedComponent(const MObject& object, MStatus* status = nullptr) {
    attach(object, status);
  }
  MFn::Type type() const override { return MFn::kTripleIndexedComponent; }

  MObject create(MFn::Type componentType, MStatus* status = nullptr);
  MStatus addElement(int sIndex, int tIndex, int uIndex);
  MStatus addElements(const MIntArray& sIndices, const MIntArray& tIndices,
                      const MIntArray& uIndices);
  MStatus getElement(int index, int& sIndex, int& tIndex, int& uIndex) const;
  MStatus getElements(MIntArray& sIndices, MIntArray& tIndices, MIntArray& uIndices) const;
  MStatus setCompleteData(int sSize, int tSize, int uSize);
  MStatus getCompleteData(int& sSize, int& tSize, int& uSize) const;
};
