#pragma once

#include <maya/MFnGeometryData.h>
#include <maya/MTypes.h>

/// Works on data that holds a mesh.
class MFnMeshData : public MFnGeometryData {
 public:
  MFnMeshData() = default;
  MFnMeshData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kMeshData; }

  /// Makes data without a mesh; `MFnMesh::create` and `copy` fill it when it is given as their
  /// parent.
  MObject create(MStatus* status = nullptr);
};
