#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MUintArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>
#include <maya/detail/Handle.h>

class MStringArray;

namespace MHWRender {

/// Draws simple shapes and text; calls stand between `beginDrawable` and `endDrawable`.
///
/// Shapes of the plain calls are in the object's space, those whose names end in 2d in pixels.
class MUIDrawManager {
 public:
  enum LineStyle { kSolid, kShortDotted, kShortDashed, kDashed, kDotted };
  enum PaintStyle { kFlat, kStippled, kShaded };
  enum Primitive { kPoints, kLines, kLineStrip, kClosedLine, kTriangles, kTriStrip };
  enum Selectability { kNonSelectable, kSelectable, kAutomatic };
  enum TextAlignment { kLeft, kCenter, kRight };
  enum FontSize { kDefaultFontSize = -1, kSmallFontSize = 9 };
  enum FontInclineType { kInclineNormal, kInclineOblique, kInclineItalic };
  enum FontWeightType {
    kWeightLight = 25,
    kWeightNormal = 50,
    kWeightDemiBold = 63,
    kWeightBold = 75,
    kWeightBlack = 87
  };
  enum FontStretchType { kStretchUnstretched = 100 };
  enum FontLineType {
    kLineNone = 0,
    kLineOverline = 1,
    kLineUnderline = 2,
    kLineStrikeoutLine = 4
  };

  virtual ~MUIDrawManager();

  void beginDrawable();
  void beginDrawable(Selectability selectability, unsigned int selectionName = 0);
  void endDrawable();
  /// What is drawn in between shows through everything.
  void beginDrawInXray();
  void endDrawInXray();

  void setColor(const MColor& color);
  void setColorIndex(short index);
  void setPointSize(float value);
  void setLineWidth(float value);
  void setLineStyle(LineStyle style);
  void setLineStyle(unsigned int factor, unsigned short pattern);
  void setPaintStyle(PaintStyle style);
  void setDepthPriority(unsigned int priority);

  void point(const MPoint& point);
  void point2d(const MPoint& point);
  void points(const MPointArray& points, bool draw2D = false);
  void line(const MPoint& startPoint, const MPoint& endPoint);
  void line2d(const MPoint& startPoint, const MPoint& endPoint);
  void lineList(const MPointArray& points, bool draw2D);
  void lineStrip(const MPointArray& points, bool draw2D);
  void mesh(Primitive mode, const MPointArray& position, const MVectorArray* normal = nullptr,
            const MColorArray* color = nullptr, const MUintArray* index = nullptr,
            const MPointArray* texcoord = nullptr);
  void mesh2d(Primitive mode, const MPointArray& position, const MColorArray* color = nullptr,
              const MUintArray* index = nullptr, const MPointArray* texcoord = nullptr);
  void sphere(const MPoint& center, double radius, bool filled = false);
  void circle(const MPoint& center, const MVector& normal, double radius, bool filled = false);
  void circle2d(const MPoint& center, double radius, bool filled = false);
  void arc(const MPoint& center, const MVector& start, const MVector& end, const MVector& normal,
           double radius, bool filled = false);
  void arc2d(const MPoint& center, const MVector& start, const MVector& end, double radius,
             bool filled = false);
  void rect(const MPoint& center, const MVector& up, const MVector& normal, double scaleX,
            double scaleY, bool filled = false);
  void rect2d(const MPoint& center, const MVector& up, double scaleX, double scaleY,
              bool filled = false);
  void quad(const MPoint& point1, const MPoint& point2, const MPoint& point3, const MPoint& point4,
            bool filled = false);
  void box(const MPoint& center, const MVector& up, const MVector& right, double scaleX = 1.0,
           double scaleY = 1.0, double scaleZ = 1.0, bool filled = false);
  void cone(const MPoint& base, const MVector& direction, double radius, double height,
            bool filled = false);

  void setFontSize(unsigned int size);
  void setFontName(const MString& faceName);
  void setFontIncline(int fontIncline);
  void setFontWeight(int fontWeight);
  void setFontStretch(int fontStretch);
  void setFontLine(int fontLine);
  static unsigned int getFontList(MStringArray& faceNames);
  void text(const MPoint& position, const MString& text, TextAlignment alignment = kLeft,
            const int* backgroundSize = nullptr, const MColor* backgroundColor = nullptr,
            bool dynamic = false);
  void text2d(const MPoint& position, const MString& text, TextAlignment alignment = kLeft,
              const int* backgroundSize = nullptr, const MColor* backgroundColor = nullptr,
              bool dynamic = false);
  void icon(const MPoint& position, const MString& name, float scale);
  static MStatus getIconNames(MStringArray& names);

 private:
  MUIDrawManager() = default;
  friend struct host::api::Access;
  host::api::Handle handle_;
};

}  // namespace MHWRender
