#pragma once

#include <maya/MFnData.h>
#include <maya/MMatrix.h>
#include <maya/MTypes.h>

class MSelectionList;

/// Works on data that holds geometry: its placement and its component groups.
class MFnGeometryData : public MFnData {
 public:
  enum SubsetState { kInvalid, kPending, kAll };

  MFnGeometryData() = default;
  MFnGeometryData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kGeometryData; }

  MStatus getMatrix(MMatrix& matrix) const;
  MStatus setMatrix(const MMatrix& matrix);
  bool isIdentity(MStatus* status = nullptr) const;
  bool isNotIdentity(MStatus* status = nullptr) const;
  bool matrixIsIdentity(MStatus* status = nullptr) const { return isIdentity(status); }
  bool matrixIsNotIdentity(MStatus* status = nullptr) const { return isNotIdentity(status); }

  unsigned int objectGroupCount(MStatus* status = nullptr) const;
  unsigned int objectGroup(unsigned int index, MStatus* status = nullptr) const;
  MFn::Type objectGroupType(unsigned int groupId, MStatus* status = nullptr) const;
  bool hasObjectGroup(unsigned int groupId, MStatus* status = nullptr) const;
  MStatus addObjectGroup(unsigned int groupId);
  MStatus removeObjectGroup(unsigned int groupId);
  MStatus changeObjectGroupId(unsigned int sourceId, unsigned int destId);
  MObject objectGroupComponent(unsigned int groupId, MStatus* status = nullptr) const;
  MStatus setObjectGroupComponent(unsigned int groupId, const MObject& component);
  MStatus addObjectGroupComponent(unsigned int groupId, const MObject& component);
  MStatus removeObjectGroupComponent(unsigned int groupId, const MObject& component);
};
