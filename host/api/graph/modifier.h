#pragma once

#include <maya/MDGModifier.h>

#include <functional>
#include <vector>

#include "host/api/core/access.h"

namespace host::api {

/// What a modifier has queued and done.
struct ModifierRep final : SharedRep {
  ~ModifierRep() override;

  /// Makes a node now, so that later steps can name it; it is part of the next run.
  Result<dg::NodePtr> create(const std::string& type, dg::Node* parent);
  void add(std::function<Result<void>()> step) { steps.push_back(std::move(step)); }
  /// Runs what is queued, or does again what was taken back. A step that fails takes back all of
  /// this run.
  Result<void> run();
  /// All of it, or nothing when the scene has become another one meanwhile.
  Result<void> takeBack();

  std::vector<std::function<Result<void>()>> steps;
  std::vector<std::weak_ptr<dg::Node>> untold;  ///< of `created`: callbacks hear of them at the run
  scene::ChangeSet created;                     ///< nodes made since the last run
  scene::ChangeSet done;
  bool isTakenBack = false;
  scene::Document* scene = nullptr;  ///< the one that `created` belongs to
};

[[nodiscard]] inline ModifierRep& modifierOf(const MDGModifier& modifier) {
  return *Access::rep<ModifierRep>(modifier);
}

}  // namespace host::api
