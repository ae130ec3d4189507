#pragma once

#include <doctest/doctest.h>
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>

#include <memory>
#include <string>

#include "host/api/session/host_session.h"
#include "host/base/messages.h"

/// A host with the toolkit loaded, and what tests of its commands ask for all the time.
class toolkitSession {
 public:
  toolkitSession();

  /// Runs MEL that must succeed.
  void run(const std::string& mel) {
    const auto done = session->executeLine(mel);
    CAPTURE(mel);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
  }
  /// Runs MEL that must fail; the error texts that a person sees, a line each.
  std::string failure(const std::string& mel) {
    const host::MessageCapture capture;
    CAPTURE(mel);
    CHECK_FALSE(session->executeLine(mel).has_value());
    return capture.text(host::MessageKind::Error);
  }
  std::uint64_t hash() { return session->document().hash(); }

  static MDagPath path(const char* name) {
    MSelectionList list;
    MDagPath found;
    REQUIRE(list.add(name));
    REQUIRE(list.getDagPath(0, found));
    found.extendToShape();
    return found;
  }
  static MPointArray points(const char* name, MSpace::Space space = MSpace::kWorld) {
    MPointArray all;
    REQUIRE(MFnMesh(path(name)).getPoints(all, space));
    return all;
  }
  static void setPoints(const char* name, const MPointArray& all,
                        MSpace::Space space = MSpace::kWorld) {
    REQUIRE(MFnMesh(path(name)).setPoints(all, space));
  }
  static void setPoint(const char* name, int vertex, const MPoint& point) {
    REQUIRE(MFnMesh(path(name)).setPoint(vertex, point, MSpace::kWorld));
  }

  std::unique_ptr<host::cmd::Session> session;
};

/// MEL that poses "shape" (a mesh's transform named so) in every way a pose can trip world-space
/// work.
inline const char* const kPoses[] = {
    "",
    "setAttr shape.rotate -type double3 30 -50 70; setAttr shape.translate -type double3 3 -2 5;",
    "setAttr shape.scale -type double3 2 0.5 3; setAttr shape.rotate -type double3 10 20 30;",
    "setAttr shape.scale -type double3 -1 2 1; setAttr shape.shearXY 0.4;",
    ("group -name above shape; setAttr above.scale -type double3 1 -3 0.25; setAttr above.rotate "
     "-type double3 40 0 15;"
     "setAttr shape.rotate -type double3 -20 35 0; setAttr shape.rotatePivot -type double3 1 2 3;"),
};
