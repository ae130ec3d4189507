#pragma once

#include <maya/MStatus.h>

/// The order in which vertices were picked, which a selection list does not tell: it sorts them.
/// One for the module, followed from load to unload.
class pickOrder {
 public:
  /// Follows every change of the selection from now on.
  static MStatus begin();
  static void end();

  /// The vertex that was picked last of those selected now, of a single mesh; of several picked at
  /// once the last by number. -1 without selected vertices, with those of several meshes, and where
  /// so many are selected that nobody picked them one by one.
  static int lastVertex();
};
