#include "host/ops/boolean/boolean.h"

#include <algorithm>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/ops/boolean/arrangement.h"
#include "host/ops/boolean/boolean_loops.h"
#include "host/ops/boolean/solid_side.h"

namespace host::ops {

namespace {

/// Whole faces and pieces of cut ones, in connected patches that the other mesh meets at their
/// borders at most: all of a patch is inside, outside or on the other mesh.
class Patches {
 public:
  explicit Patches(const Arrangement& arrangement)
      : arrangement_(arrangement),
        faces_(arrangement.mesh().faceCount()),
        sets_(at(faces_) + arrangement.pieces().size()) {
    std::unordered_map<std::uint64_t, Index> firstAt[2];
    joinWholeFaces(firstAt);
    const auto& pieces = arrangement.pieces();
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      const int side = arrangement.sideOf(arrangement.triangle(pieces[i].triangle).face);
      for (std::size_t k = 0; k < 3; ++k)
        joinAcross(pieces[i].points[k], pieces[i].points[(k + 1) % 3],
                   faces_ + static_cast<Index>(i), firstAt[side]);
    }
  }
  [[nodiscard]] Index ofFace(FaceId face) { return sets_.lowest(face); }
  [[nodiscard]] Index ofPiece(Index piece) { return sets_.lowest(faces_ + piece); }
  [[nodiscard]] std::size_t count() const { return at(faces_) + arrangement_.pieces().size(); }

 private:
  void joinAcross(PointId a, PointId b, Index element,
                  std::unordered_map<std::uint64_t, Index>& firstAt) {
    if (arrangement_.isContact(a, b)) return;
    const auto [place, isNew] = firstAt.try_emplace(Arrangement::pairKey(a, b), element);
    if (!isNew) sets_.join(place->second, element);
  }

  void joinWholeFaces(std::unordered_map<std::uint64_t, Index>* firstAt) {
    const Mesh& mesh = arrangement_.mesh();
    const ExactPoints& points = arrangement_.points();
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      pollCancel(at(e));
      const PointId a = points.ofVertex(mesh.edge(e).a), b = points.ofVertex(mesh.edge(e).b);
      if (arrangement_.isContact(a, b)) continue;
      const auto faces = mesh.adjacency().edgeFaces(e);
      FaceId whole = kNone;
      bool hasSplit = false;
      for (const FaceId f : faces) {
        if (arrangement_.isSplit(f)) {
          hasSplit = true;
        } else {
          if (whole != kNone) sets_.join(whole, f);
          whole = f;
        }
      }
      if (hasSplit && whole != kNone) joinAcross(a, b, whole, firstAt[arrangement_.sideOf(whole)]);
    }
  }

  const Arrangement& arrangement_;
  Index faces_;
  JoinedSets sets_;
};

/// Says of each patch whether it stays.
class Sorter {
 public:
  Sorter(Arrangement& arrangement, BooleanOperation operation)
      : arrangement_(arrangement),
        operation_(operation),
        sides_{SolidSide(arrangement, 0), SolidSide(arrangement, 1)},
        patches_(arrangement),
        fates_(patches_.count(), -1) {}

  [[nodiscard]] Fate ofFace(FaceId face) { return fateOf(patches_.ofFace(face)); }
  [[nodiscard]] Fate ofPiece(Index piece) { return fateOf(patches_.ofPiece(piece)); }

 private:
  Fate fateOf(Index patch) {
    std::int8_t& fate = fates_[at(patch)];
    if (fate < 0) fate = static_cast<std::int8_t>(decide(patch));
    return static_cast<Fate>(fate);
  }

  Fate decide(Index patch) {
    const Index faces = arrangement_.mesh().faceCount();
    FacePiece piece;
    if (patch < faces) {
      const auto [first, end] = arrangement_.trianglesOf(patch);
      Index t = first;
      while (t + 1 < end && arrangement_.triangle(t).isFlat) ++t;
      piece = {arrangement_.triangle(t).points, t};
    } else {
      piece = arrangement_.pieces()[at(patch - faces)];
    }
    const int side = arrangement_.sideOf(arrangement_.triangle(piece.triangle).face);
    const int direction = directionOn(piece);
    const bool turned = sides_[side].isInsideOut();
    if (direction != 0) {
      const bool isSame = (direction > 0) != (turned != sides_[1 - side].isInsideOut());
      const bool stays = side == 0 && isSame == (operation_ != BooleanOperation::Difference);
      return !stays ? Fate::Goes : turned ? Fate::Turns : Fate::Stays;
    }
    const bool isInside = sides_[1 - side].holds(exactMiddle(arrangement_.points(), piece.points));
    const bool cutsOff = side == 1 && operation_ == BooleanOperation::Difference;
    const bool wantsInside = operation_ == BooleanOperation::Intersection || cutsOff;
    if (isInside != wantsInside) return Fate::Goes;
    return turned != cutsOff ? Fate::Turns : Fate::Stays;
  }

  /// 1 where a piece lies on a face of the other mesh with the same direction, -1 where it lies on
  /// one's back, 0 where it lies on none.
  [[nodiscard]] int directionOn(const FacePiece& piece) const {
    const FaceTriangle& own = arrangement_.triangle(piece.triangle);
    for (const Index index : arrangement_.coplanar(piece.triangle)) {
      const FaceTriangle& other = arrangement_.triangle(index);
      bool isInside = true;
      for (std::size_t k = 0; k < 3 && isInside; ++k)
        for (const PointId p : piece.points) {
          const int turn =
              arrangement_.points().turn(other.points[k], other.points[(k + 1) % 3], p, other.axis);
          isInside = isInside && (other.isTurned ? -turn : turn) >= 0;
        }
      if (isInside) return own.isTurned == other.isTurned ? 1 : -1;
    }
    return 0;
  }

  Arrangement& arrangement_;
  BooleanOperation operation_;
  SolidSide sides_[2];
  Patches patches_;
  std::vector<std::int8_t> fates_;
};

}  // namespace

Result<Mesh> booleanOf(const Mesh& united, FaceId secondFrom, BooleanOperation operation) {
  Arrangement arrangement;
  HOST_TRY(arrangement.build(united, secondFrom));
  if (isCancelled()) return fail("The boolean operation was stopped");
  Sorter sorter(arrangement, operation);
  LoopComposer composer(arrangement);
  for (FaceId f = 0; f < united.faceCount(); ++f) {
    if (isCancelledAt(at(f))) return fail("The boolean operation was stopped");
    if (!arrangement.isSplit(f)) {
      const Fate fate = sorter.ofFace(f);
      if (fate != Fate::Goes) composer.addWhole(f, fate == Fate::Turns);
      continue;
    }
    std::vector<FacePiece> stays, turns;
    const auto [first, end] = arrangement.piecesOf(f);
    for (Index i = first; i < end; ++i) {
      const Fate fate = sorter.ofPiece(i);
      if (fate != Fate::Goes)
        (fate == Fate::Turns ? turns : stays).push_back(arrangement.pieces()[at(i)]);
    }
    if (!stays.empty()) composer.addParts(f, stays, false);
    if (!turns.empty()) composer.addParts(f, turns, true);
  }
  return composer.finish();
}

Result<bool> isClosedSolid(const Mesh& mesh) {
  Arrangement arrangement;
  HOST_TRY(arrangement.buildSideOnly(mesh));
  return SolidSide(arrangement, 0).isClosed();
}

}  // namespace host::ops
