#pragma once

#include <maya/MDagPath.h>
#include <maya/MStatus.h>

#include <list>
#include <memory>

#include "brushes/brushSurface.h"
#include "shared/tool/ownedCallbacks.h"

/// The surfaces of the meshes that were brushed lately, kept while the tool is in hand, so that a
/// stroke begins without reading its mesh again. It hears when others change one of them.
class brushSurfaces {
 public:
  brushSurfaces() = default;
  ~brushSurfaces();

  /// The surface of a mesh as it is now; null for a path without a mesh. Costs nothing when nobody
  /// has changed the mesh since, a comparison of points when somebody may have, a reading else.
  std::shared_ptr<brushSurface> of(const MDagPath& mesh);
  /// Whether somebody else may have changed the mesh since `of`.
  bool isStale(const brushSurface& surface);
  /// Takes over foreign changes in mid-stroke. @return false when the topology is another one
  bool catchUp(brushSurface& surface);
  /// What happens to the surface's mesh while this lives is the brush's own doing.
  class ownEdit {
   public:
    ownEdit(brushSurfaces& all, const brushSurface& surface);
    ~ownEdit();
    ownEdit(const ownEdit&) = delete;
    ownEdit& operator=(const ownEdit&) = delete;

   private:
    bool* flag = nullptr;
  };
  void forget(const MDagPath& mesh);
  void clear();

 private:
  struct entry {
    std::shared_ptr<brushSurface> surface;
    ownedCallbacks callbacks;
    bool isStale = false, isOwn = false;
  };
  static void onDirty(MObject& node, MPlug& plug, void* data);
  entry* find(const brushSurface& surface);

  static constexpr std::size_t kKept = 6;
  std::list<entry> entries;  ///< the latest first
};
