#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "brushes/brushContext.h"
#include "brushes/uvGuard.h"
#include "brushes/uvLayout.h"
#include "brushes/uvMirror.h"
#include "brushes/uvReach.h"
#include "brushes/uvRelax.h"
#include "brushes/uvTarget.h"

/// Base of the brushes that move UVs: those of a UV object under the pointer, or those of the mesh
/// under it, which are the vertices of its UV object when it has one.
///
/// What is seen follows the hand: on a UV object the UVs, on the mesh the picture that they place.
/// No polygon of the map turns over, whatever the hand does: UVs that would turn one over are held
/// back. Shift relaxes. With `-invert`, or Ctrl, a move goes along u or v alone, turning and
/// scaling go the other way, and relaxing evens distances out without regard to the surface.
class uvBrushContext : public brushContext {
 public:
  uvBrushContext(const char* command, const char* titleIn, const char* helpIn);
  ~uvBrushContext() override;

 protected:
  enum actions { kMove, kSmear, kRotate, kScale, kRelax };
  /// What one of the brush's modes does.
  virtual actions actionOf(int mode) const = 0;

  bool canBrush(const MDagPath& mesh) const final;
  bool beginStroke(const brushHit& hit) final;
  void dab(const brushDab& dab) final;
  void showDabs() final;
  std::shared_ptr<brushRecord> strokeRecord() final;
  void endStroke() final;
  void meshChanged() final;
  bool mirrorImage(const MPoint& point, MPoint& image) const final;
  bool followsPointer() const final;

 private:
  struct change;
  actions action() const { return smooths() ? kRelax : actionOf(settings.mode); }
  bool takeContent(const uvTarget::content& content);
  void keepUp();
  void hold(const brushDab& dab);
  void drag(const brushDab& dab);
  void smear(const brushDab& dab);
  void relaxDab(const brushDab& dab);
  void relaxRound(const brushDab& dab, double intensity);
  void move(const std::vector<double>& weights, std::vector<int> uvs, std::vector<float> targets);
  MVector wayOnSurface(const brushDab& dab) const;
  void moveByShells(const std::unordered_map<int, change>& changes, bool isHeld, double strength);
  const uvMirror* mirror();
  void readSurface();

  // The stroke.
  std::unique_ptr<uvTarget> target;
  MDagPath mesh;  ///< whose UVs they are; may be invalid for a UV object on its own
  bool isUvObject = false;
  uvReach reach;
  uvLayout layout;
  std::unique_ptr<uvGuard> guard;
  std::unique_ptr<uvMirror> pairs;
  uvRelax relaxing;
  bool hasRelaxing = false, isKeptUp = false;
  uvRegion region;          ///< held on to, or of the last dab
  std::vector<float> from;  ///< where the held UVs were, two numbers each
  brushDab heldAt;
  bool isHolding = false;
  brushHit lastHit;
  double smeared[2] = {0.0, 0.0};  ///< way of the stroke so far, in the layout
  std::vector<int> changed;        ///< since the last write
  std::vector<char> isChanged;
  int heldBack = 0;

  // What the last stroke has built, for the next one on the same map.
  MIntArray knownCounts, knownIds;
};
