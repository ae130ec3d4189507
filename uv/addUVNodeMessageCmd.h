#pragma once

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <memory>
#include <vector>

#include "uv/uvArrays.h"
#include "uv/uvObject.h"

class uvPlacement;

/// `addUVNodeMessageCmd`: lays the UVs of each selected mesh out as a mesh of its own, and has what
/// is done to that one written to the mesh as it happens, without a node of its own in the history.
/// A mesh that is linked already is passed over.
class addUVNodeMessageCmd : public MPxCommand {
 public:
  addUVNodeMessageCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  /// What was made for one mesh.
  struct link {
    MDagPath mesh;
    uvObject object;
    MObject tweakNode;
    MString uvSet;
    int number = 0;  ///< 0: not linked now
  };
  MStatus build(const MDagPath& mesh, const uvPlacement& placement);
  void addTweakNode(link& made);
  void connect(link& made) const;
  MStatus bringBack();

  MSelectionList selectionBefore;
  std::vector<MDagPath> meshes;
  std::vector<link> links;
  MDGModifier tweaks;                    ///< the UV tweak nodes
  std::shared_ptr<MDGModifier> removal;  ///< brings the objects back after an undo
};
