#pragma once

#include <maya/MMatrix.h>
#include <maya/MObjectHandle.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>

#include <cstddef>
#include <vector>

#include "shared/tool/ownedCallbacks.h"
#include "uv/uvArrays.h"
#include "uv/uvLinks.h"
#include "uv/uvPlacement.h"

class MFnMesh;

/// One mesh that follows a UV object by callbacks.
///
/// It holds where the object's vertices stood when the two were linked, so that all that was done
/// since is known, and where they stood when it last looked, so that a drag of some costs little
/// more than these. The unit of length is that of the time of linking, like the object itself.
class uvLink {
 public:
  uvLink(const uvLinks::ends& linked, int numberIn);
  uvLink(const uvLink&) = delete;
  uvLink& operator=(const uvLink&) = delete;

  /// Takes down how things stand and registers the callbacks; false when that fails.
  bool begin();
  /// Writes what moved since the last time to the mesh's UVs. A failure is shown, once for each
  /// reason.
  void writeBack();

  int number() const { return id; }
  bool drives(const MObject& meshShape) const;
  bool reads(const MObject& uvObjectShape) const;
  const MDagPath& mesh() const { return linked.mesh; }
  /// Whether a change of this plug of the UV object can have moved a vertex.
  bool isWatched(const MPlug& plug) const;

 private:
  /// Where the UV object's vertices are: object space, and the way from there to the world.
  struct places {
    std::vector<float> points;  ///< three a vertex
    MMatrix toWorld;
    std::size_t count() const { return points.size() / 3; }
    double x(std::size_t vertex) const;
    double z(std::size_t vertex) const;
  };
  bool read(places& now) const;
  std::vector<std::size_t> movedSince(const places& before, const places& now) const;
  void writeOffsets(const places& now, const std::vector<std::size_t>& moved);
  void writeUvs(const places& now, const std::vector<std::size_t>& moved);
  void complain(const MString& text);

  uvLinks::ends linked;
  int id;
  uvPlacement placement;
  MObjectHandle uvShape, meshShape, tweak;
  MPlug outMesh, worldMatrix;                  ///< of the UV object, what is watched
  std::vector<double> referenceX, referenceZ;  ///< cm, the world; a vertex each
  places last;
  MFloatArray uAtLink, vAtLink;
  MString complaint;  ///< the last that was shown
  bool isWriting = false;
  ownedCallbacks callbacks;
};
