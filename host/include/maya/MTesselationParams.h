#pragma once

#include <maya/MTypes.h>

/// How a curved surface is cut into polygons. The host cuts along lines of the surface's
/// parameters, evenly within every span; the subdivision types and fit measures are kept as given
/// and not used.
class MTesselationParams {
 public:
  enum FormatType {
    kTriangleCountFormat,
    kStandardFitFormat,
    kGeneralFormat,
    kGeneralMaximizedFormat,
    kGeneralCVFormat
  };
  enum OutputType { kTriangles, kQuads };
  enum IsoparmType {
    kSurface3DEquiSpaced,
    kSurfaceEquiSpaced,
    kSpanEquiSpaced,
    kSurface3DDistance
  };

  MTesselationParams(FormatType formatType = kStandardFitFormat, OutputType outputType = kTriangles)
      : format_(formatType), output_(outputType) {}

  void setFormatType(FormatType formatType) { format_ = formatType; }
  void setOutputType(OutputType outputType) { output_ = outputType; }
  /// About how many triangles, for kTriangleCountFormat.
  void setTriangleCount(int count) { triangleCount_ = count; }
  /// How many pieces, of a span (kSpanEquiSpaced) or of the whole surface.
  void setUNumber(int count) { uNumber_ = count; }
  void setVNumber(int count) { vNumber_ = count; }
  void setUIsoparmType(IsoparmType type) { uType_ = type; }
  void setVIsoparmType(IsoparmType type) { vType_ = type; }

  FormatType formatType() const { return format_; }
  OutputType outputType() const { return output_; }
  int triangleCount() const { return triangleCount_; }
  int uNumber() const { return uNumber_; }
  int vNumber() const { return vNumber_; }
  IsoparmType uIsoparmType() const { return uType_; }
  IsoparmType vIsoparmType() const { return vType_; }

  static MTesselationParams fsDefaultTesselationParams;

 private:
  FormatType format_;
  OutputType output_;
  int triangleCount_ = 32, uNumber_ = 3, vNumber_ = 3;
  IsoparmType uType_ = kSpanEquiSpaced, vType_ = kSpanEquiSpaced;
};
