#pragma once

#include <functional>
#include <string>

#include "host/dg/plug.h"

namespace host::builtins {

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

/// Who else is told of files; a service of the session.
struct SceneHooks {
  enum class Work { None, NewScene, Opening, Importing, Writing };
  Work work = Work::None;  ///< what is going on now

  std::function<void(SceneStage, const std::string& path)> reached;
  /// Asked before anything happens; false stops it.
  std::function<bool(SceneStage, const std::string& path)> mayGoOn;
};

/// Who has a say in what is written of plug-in nodes; a service of the session.
struct SaveHooks {
  std::function<bool(const dg::Plug&)> leavesOut;
};

}  // namespace host::builtins
