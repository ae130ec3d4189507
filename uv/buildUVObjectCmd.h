#pragma once

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>

#include <memory>
#include <vector>

#include "shared/mesh/historyStep.h"
#include "uv/uvObject.h"

class uvPlacement;

/// `qxBuildUVObject`: lays the UVs of each selected mesh out as a mesh of its own, and puts a
/// `uvEditNode` into the mesh's history that writes what is done to that one back. A mesh that has
/// such a node already is passed over.
class buildUVObjectCmd : public MPxCommand {
 public:
  buildUVObjectCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();

 private:
  /// What was made for one mesh.
  struct link {
    uvObject object;
    historyStep step;
  };
  MStatus build(const MDagPath& mesh, const uvPlacement& placement);
  MStatus buildAll();
  MStatus bringBack();

  MSelectionList selectionBefore;
  std::vector<MDagPath> meshes;
  std::vector<link> links;
  std::shared_ptr<MDGModifier> removal;  ///< brings the objects back after an undo
};
