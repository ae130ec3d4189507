#pragma once

#include <maya/MDagPath.h>

/// The static object on which sliding vertices and drawn points move: one for the whole module, as
/// the user last set it. It lasts until another is set; while it is deleted there is none.
class slideObject {
 public:
  /// The mesh; not valid when none was set or it is gone.
  static MDagPath current();
  /// Takes a mesh shape, or none for a path that is not valid.
  static void set(const MDagPath& mesh);
};
