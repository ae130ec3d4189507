#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::edits {

/// Who else is told when nodes are copied.
struct DuplicateHooks {
  std::function<void()> before, after;  ///< once a call; not `after` when it fails
  /// A copy has the original's values; what is not kept in attributes can be brought along.
  std::function<void(dg::Node& original, dg::Node& copy)> copied;
};

struct DuplicateOptions {
  std::string name = {};         ///< of each copy; empty: the original's with the next number
  bool renamesChildren = false;  ///< copies of what is below get numbers of their own too
  bool withoutChildren = false;
  bool sharesShapes = false;    ///< shapes below are instanced, not copied
  bool connectsInputs = false;  ///< what feeds the originals feeds the copies
  bool copiesUpstream = false;  ///< what feeds the originals is copied too
  bool selects = true;          ///< the copies are the selection afterwards
  const DuplicateHooks* hooks = nullptr;
};

struct Copy {
  dg::NodePtr node;
  std::vector<dg::NodePtr> below;  ///< copies of transforms below it, top down
};

/// Copies objects with all below them, and other nodes, with their values. A mesh's copy holds what
/// is seen of it now; shading groups take it in.
/// @return one a list item, in order; after an error the document is as it was
Result<std::vector<Copy>> duplicate(scene::Document& document, scene::SelectionList list,
                                    const DuplicateOptions& options = {});

struct InstanceOptions {
  std::string name = {};    ///< of each new transform; empty: made from the original's
  bool onlyShapes = false;  ///< transforms below are copied, and shapes shared
  bool selects = true;
  const DuplicateHooks* hooks = nullptr;
};

/// Makes a new transform for each object, under which what is below the object appears once more.
/// @return the transforms, in order; after an error the document is as it was
Result<std::vector<dg::NodePtr>> instance(scene::Document& document, scene::SelectionList list,
                                          const InstanceOptions& options = {});

}  // namespace host::edits
