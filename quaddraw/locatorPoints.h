#pragma once

#include <maya/MObjectHandle.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

/// The locator in which the quad draw tool keeps its loose points and its preview. What of it can't
/// be reached is told and reads as empty.
class locatorPoints {
 public:
  /// Takes the locator that the scene has under the tool's name, or makes one without a step of
  /// undo; selection, component mode and what is hilited stay as they are.
  void create();
  /// Deletes it.
  void remove();
  bool isThere() const { return shape.isValid() && shape.isAlive(); }
  MObject node() const { return isThere() ? shape.object() : MObject(); }

  MPointArray loose() const;
  void setLoose(const MPointArray& points);
  MPointArray preview() const;
  /// Empties the preview, whatever it held.
  void clearPreview();
  /// @return whether it shows something else now
  bool setPreview(const MPointArray& points);

 private:
  bool makeNode();
  void showInIsolation(const MString& name) const;
  MObjectHandle shape;
};
