#pragma once

#include <functional>

#include "host/nodes/mesh_shape.h"
#include "tests/toolkit/toolkit_session.h"
#include "tests/zoo/mesh_zoo.h"

/// Makes a mesh of the zoo the scene's only object: transform "shape", no history.
/// `pose` is MEL that is run afterwards; the path is the one after that.
inline MDagPath showMesh(toolkitSession& toolkit, const host::mesh::Mesh& mesh,
                         const char* pose = "") {
  toolkit.run("file -f -new; polyCube -ch 0 -name shape;");
  const auto shape = toolkit.session->document().node("shapeShape");
  REQUIRE(shape.has_value());
  REQUIRE(host::nodes::setStoredMesh(**shape, mesh).has_value());
  toolkit.run(pose);
  return toolkitSession::path("shape");
}

/// A path whose object has been deleted.
inline MDagPath deletedPath(toolkitSession& toolkit) {
  toolkit.run("file -f -new; polyCube -name gone;");
  const MDagPath path = toolkitSession::path("gone");
  toolkit.run("delete gone");
  return path;
}

/// The poses under which no routine may fail by more than a status: turned inside out, and pressed
/// flat.
inline const char* const kHardPoses[] = {
    "group -name above shape; setAttr above.scale -type double3 -1 2 -0.5;",
    "group -name above shape; setAttr above.scale -type double3 1 0 1;",
    "setAttr shape.scale -type double3 0 0 0;",
};
