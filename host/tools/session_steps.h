#pragma once

#include "host/edits/gesture.h"

namespace host::tools {

/// Gestures end as steps on the undo queue of the session that runs.
class SessionSteps final : public edits::StepKeeper {
 public:
  Result<void> collect(scene::ChangeSet& target,
                       const std::function<Result<void>()>& edit) override;
  void add(const std::string& name, scene::ChangeSet step) override;
  void setPending(std::function<void()> finish) override;
};

}  // namespace host::tools
