#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::io {

/// Consecutive faces of one object.
struct ObjFaceRange {
  FaceId first = 0;
  Index count = 0;
  friend bool operator==(const ObjFaceRange&, const ObjFaceRange&) = default;
};

/// The faces that carry one name: a group or a material.
struct ObjFaceSet {
  std::string name;
  std::vector<ObjFaceRange> ranges;  ///< ascending, apart from each other
  friend bool operator==(const ObjFaceSet&, const ObjFaceSet&) = default;
};

/// Consecutive faces in one smoothing group; 0 is "off".
struct ObjSmoothingRun {
  ObjFaceRange faces;
  std::uint32_t group = 0;
  friend bool operator==(const ObjSmoothingRun&, const ObjSmoothingRun&) = default;
};

struct ObjObject {
  std::string name;  ///< empty when the file names no object
  mesh::Mesh mesh;
  std::vector<ObjFaceSet> groups;          ///< in order of first use; a face may be in several
  std::vector<ObjFaceSet> materials;       ///< in order of first use; a face is in one at most
  std::vector<ObjSmoothingRun> smoothing;  ///< as the file states it, ascending
  bool statesSmoothing = true;  ///< false: all smooth, since the file says nothing about it
  bool hasNormals = false;      ///< the file gives normals for the object's faces
  friend bool operator==(const ObjObject&, const ObjObject&) = default;
};

/// What an OBJ file holds.
struct ObjScene {
  std::vector<ObjObject> objects;
  std::vector<std::string> materialLibraries;   ///< as written, one a statement
  std::map<std::string, std::size_t> warnings;  ///< what was passed over, and how often
  friend bool operator==(const ObjScene&, const ObjScene&) = default;
};

}  // namespace host::io
