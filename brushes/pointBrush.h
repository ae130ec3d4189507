#pragma once

#include <memory>
#include <vector>

#include "brushes/brushContext.h"
#include "brushes/mirrorPairs.h"
#include "brushes/pointStroke.h"
#include "brushes/vertexSlots.h"

/// How far the vertices of a region go, world space; one for each of its vertices.
using dabMoves = std::vector<MVector>;

/// Base of the brushes that move vertices of a mesh. It finds what a dab reaches, keeps borders and
/// pins, moves the mirrored side alike, writes to the mesh and keeps the record; a brush plans how
/// far the vertices go.
class pointBrush : public brushContext {
 public:
  using brushContext::brushContext;
  ~pointBrush() override;

 protected:
  /// Plans a dab. The region's weights carry falloff and facing.
  virtual void plan(const brushDab& dab, const dabRegion& region, dabMoves& moves) = 0;
  /// Whether the stroke holds on to what the brush reached where it was pressed.
  virtual bool isHolding() const = 0;
  /// The stamp's first axis, world, unit, across the dab's normal.
  virtual MVector stampAxis(const brushDab& dab) const;

  bool followsPointer() const final { return isHolding() && !smooths(); }
  bool beginStroke(const brushHit& hit) override;
  void dab(const brushDab& dab) override;
  void showDabs() override;
  std::shared_ptr<brushRecord> strokeRecord() override;
  void endStroke() override;
  void meshChanged() override;

  const brushSurface& surface() const { return *strokeStart().surface; }

 private:
  dabQuery queryFor(const brushDab& dab) const;
  void holdOn(const brushDab& dab);
  bool isFixed(int vertex) const;
  void move(const dabRegion& region, const dabMoves& moves, bool fromStart);
  struct shift {
    int vertex;
    double weight;
    MVector by;      ///< object space
    bool isOnPlane;  ///< the vertex is its own counterpart
  };
  void mirror();
  void put(const shift& one, bool fromStart);

  std::vector<char> pins;
  mirrorPairs pairs;
  dabRegion reachedNow, held;
  MPoint heldFrom;
  brushDab lastHeld;
  dabMoves movesNow;
  std::vector<shift> shifts;
  vertexSlots shiftOf;  ///< vertex to place in `shifts`
  std::vector<int> movedNow;
  std::vector<float> placesNow;
  pointStroke stroke;
};
