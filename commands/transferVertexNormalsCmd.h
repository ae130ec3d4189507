#pragma once

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSpace.h>
#include <maya/MSyntax.h>
#include <maya/MVectorArray.h>

struct cornerNormals;
struct meshPair;
struct vertexCorners;

/// `qxTransferVertexNormals`: the first selected mesh is shaded with the normals of the second:
/// every corner takes the normal that the second mesh shows at the closest point, on its own side
/// where that lies on a hard edge. Selected components of the first mesh limit it to their
/// vertices. The result is the number of vertices without a place.
class transferVertexNormalsCmd : public MPxCommand {
 public:
  transferVertexNormalsCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return !isHelp; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus readSource(const MDagPath& source, cornerNormals& normals) const;
  MStatus gatherNormals(const meshPair& pair);
  void splitVertex(const vertexCorners& around, const MVectorArray& ofCorners);
  MStatus apply();

  bool isHelp = false;  ///< only the help text was asked for: there is nothing to undo
  MSpace::Space space;
  double maxDistance;  ///< cm; 0: no limit

  MDagPath targetPath;
  MIntArray vertexIds;         ///< vertices with a place, ascending
  MVectorArray vertexNormals;  ///< in `space`, one a vertex of `vertexIds`: what its corners agree
                               ///< on or come to
  MIntArray cornerFaces, cornerVertices;
  MVectorArray cornerNormalsAtEdges;  ///< in `space`, of the corners that differ from their vertex
  int unplaced;
  MDGModifier modifier;  ///< holds the normals before
};
