#pragma once

#include <maya/MPxSurfaceShape.h>

class M3dView;
class MDrawInfo;
class MDrawRequest;
class MDrawRequestQueue;
class MPointArray;
class MSelectInfo;

/// Base of the classes that draw and pick a plug-in's shapes in the older views.
///
/// There are no such views here: a class may be registered with its shape and is not asked. Shapes
/// show by a geometry or draw override.
class MPxSurfaceShapeUI {
 public:
  MPxSurfaceShapeUI();
  virtual ~MPxSurfaceShapeUI();

  virtual void getDrawRequests(const MDrawInfo& info, bool objectAndActiveOnly,
                               MDrawRequestQueue& requests);
  virtual void draw(const MDrawRequest& request, M3dView& view) const;
  virtual bool select(MSelectInfo& selectInfo, MSelectionList& selectionList,
                      MPointArray& worldSpaceSelectPts) const;
};
