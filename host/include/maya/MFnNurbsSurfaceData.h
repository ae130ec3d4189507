#pragma once

#include <maya/MFnGeometryData.h>
#include <maya/MTypes.h>

/// Works on data that holds a curved surface.
class MFnNurbsSurfaceData : public MFnGeometryData {
 public:
  MFnNurbsSurfaceData() = default;
  MFnNurbsSurfaceData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kNurbsSurfaceData; }

  /// Makes data without a surface; `MFnNurbsSurface::create` with it as parent fills it.
  MObject create(MStatus* status = nullptr);
};
