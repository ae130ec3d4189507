#pragma once

#include <string>

#include "host/base/signal.h"
#include "host/dg/node.h"
#include "host/dg/plug.h"

namespace host::workspace {

/// The stations of reading, writing and emptying scenes.
enum class SceneStage {
  BeforeNew,
  AfterNew,
  BeforeOpen,
  AfterOpen,
  BeforeImport,
  AfterImport,
  BeforeRead,
  AfterRead,
  BeforeSave,
  AfterSave,
  BeforeExport,
  AfterExport,
};

/// Who else is told of files, and asked.
struct SceneHooks {
  enum class Work { None, NewScene, Opening, Importing, Writing };
  Work work = Work::None;  ///< what is going on now

  Signal<SceneStage, const std::string&> reached;  ///< with the file's path
  /// Before anything happens; a listener that sets the flag stops it.
  Signal<SceneStage, const std::string&, bool&> asked;
  /// Of a plug that is about to be written; a listener that sets the flag leaves it out.
  Signal<const dg::Plug&, bool&> saving;
};

/// Who else is told when nodes are copied.
struct DuplicateHooks {
  Signal<> before, after;  ///< once a command; not `after` when it fails
  /// A copy, after its original, has the original's values; what is not kept in attributes can be
  /// brought along.
  Signal<dg::Node&, dg::Node&> copied;
};

}  // namespace host::workspace
