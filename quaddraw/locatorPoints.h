#pragma once

#include <maya/MNodeMessage.h>
#include <maya/MPointArray.h>

#include "shared/tool/ownedCallbacks.h"
#include "shared/tool/ownedLocator.h"

/// The locator in which the quad draw tool keeps its loose points and its preview. Both are read
/// when they have changed, by whomever. What of it can't be reached is told and reads as empty.
class locatorPoints {
 public:
  locatorPoints();
  locatorPoints(const locatorPoints&) = delete;
  locatorPoints& operator=(const locatorPoints&) = delete;

  /// Takes the locator that the scene has under the tool's name, or makes one without a step of
  /// undo; selection, component mode and what is hilited stay as they are.
  void create();
  /// Deletes it.
  void remove();
  bool isThere() const { return locator.isThere(); }
  MObject node() const { return locator.node(); }

  /// Valid until the points change.
  const MPointArray& loose();
  void setLoose(const MPointArray& points);
  const MPointArray& preview();
  /// Empties the preview, whatever it held.
  void clearPreview();
  /// @return whether it shows something else now
  bool setPreview(const MPointArray& points);
  /// Grows whenever the loose points were read anew.
  unsigned int revision() {
    bringUpToDate();
    return reads;
  }

 private:
  static void onChange(MNodeMessage::AttributeMessage, MPlug&, MPlug&, void* self);
  void attach();
  void bringUpToDate();

  ownedLocator locator;
  ownedCallbacks callbacks;
  MPointArray looseNow, previewNow;
  bool isLooseStale = true, isPreviewStale = true;
  unsigned int reads = 0;
};
