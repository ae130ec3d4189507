#include "host/tools/session_steps.h"

#include <memory>
#include <utility>

#include "host/cmd/pending_edits.h"
#include "host/cmd/session.h"
#include "host/edits/atomically.h"

namespace host::tools {

Result<void> SessionSteps::collect(scene::ChangeSet& target,
                                   const std::function<Result<void>()>& edit) {
  return cmd::currentSession().dispatcher().collectInto(target, edit);
}

void SessionSteps::add(const std::string& name, scene::ChangeSet step) {
  cmd::Session& session = cmd::currentSession();
  scene::Journal& journal = session.document().journal();
  // The edits have been made: where steps are recorded now, they are one.
  (void)session.dispatcher().recordStep(name, [&]() -> Result<void> {
    if (journal.isRecording())
      journal.record(scene::makeChange(std::move(step)));
    else
      session.undo().noteUnrecorded();
    return {};
  });
}

void SessionSteps::setPending(std::function<void()> finish) {
  cmd::pendingEdits().finish = std::move(finish);
}

}  // namespace host::tools
