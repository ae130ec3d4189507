#pragma once

#include <maya/MDGModifier.h>
#include <maya/MObjectHandle.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include <unordered_map>
#include <vector>

#include "brushes/brushRecord.h"
#include "brushes/uvLayout.h"

class MDagPath;

/// UVs of a mesh's set that a stroke moves, before and after.
///
/// On a mesh without history they are the stored UVs. On one with history they are offsets of the
/// UV tweak node in front of the shape, which the first change makes when there is none and whose
/// undo takes it away again: strokes don't pile up nodes.
class uvSetRecord : public brushRecord {
 public:
  uvSetRecord(const MDagPath& mesh, const MString& uvSet);
  /// Moves UVs to their places in the layout; `now` are all UVs as the mesh has them, two numbers
  /// each. A failure changes nothing.
  MStatus change(const std::vector<int>& uvs, const uvLayout& layout,
                 const std::vector<float>& now);
  bool isEmpty() const { return changes.empty(); }
  /// The stroke is over: lets go of what only it needed.
  void settle();

  MStatus show(bool after) override;
  bool changesNothing() const override;
  std::size_t bytes() const override;

 private:
  struct entry {
    int uv;
    bool wasThere;  ///< an offset, zero or not
    double before[2], after[2];
  };
  struct base {
    double place[2];
  };
  MObject shape() const;
  bool hasHistory() const;
  MObject tweakNode() const;
  MStatus makeTweakNode();
  std::size_t changeAt(int uv, const std::vector<float>& now, const MPlug& tweaks);
  MStatus writeOffsets(const MPlug& tweaks, bool after) const;
  MStatus removeNewOffsets(const MPlug& tweaks) const;
  MStatus writeStored(bool after) const;

  MObjectHandle mesh;
  MString set;
  bool usesTweaks = false, hasBegun = false, madeNode = false;
  MDGModifier nodeMaker;
  std::vector<int> offsetsBefore;  ///< UVs that had an offset, ascending
  std::vector<entry> changes;
  std::vector<base> bases;  ///< what the offsets of the changes are added to
  std::unordered_map<int, std::size_t> changeOf;
};
