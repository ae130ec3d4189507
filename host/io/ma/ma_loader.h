#pragma once

#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/io/ma/ma_file.h"
#include "host/io/ma/ma_kept.h"
#include "host/io/ma/ma_references.h"
#include "host/scene/document.h"

namespace host::io {

struct MaLoadOptions {
  bool isImport = false;     ///< into a scene that has nodes: keeps its units and its file info
  std::string clashPrefix;   ///< for names that are taken: "<prefix>_<name>"
  bool renamesAll = false;   ///< the prefix for all nodes, not only for clashes
  std::string nameSpace;     ///< puts all nodes into it: "<namespace>:<name>"
  bool isReference = false;  ///< many files may come from one: nodes get ids of their own
  const MaReferenceKeeper* references = nullptr;  ///< null: files that it refers to are not read
};

struct MaLoaded {
  std::vector<dg::Node*> nodes;       ///< made, in the order of the file
  std::vector<std::string> warnings;  ///< the file's own included
};

/// Adds what a file holds to a document. Nodes of types that are not registered become `unknown`,
/// `unknownDag` or `unknownTransform`; what has no place goes into `kept`. A default node that the
/// file makes or selects is the document's own.
/// @return an error only when the document refuses a node; the caller undoes what was done till
/// then.
[[nodiscard]] Result<MaLoaded> loadMa(scene::Document& document, MaFile file, MaKept& kept,
                                      const MaLoadOptions& options = {});

}  // namespace host::io
