#include "host/edits/at_time.h"

namespace host::edits {

AtTime::AtTime(scene::Document& document, double seconds) : document_(document) {
  const auto clocks = document.nodesNamed("time1");
  const dg::Plug clock = clocks.empty() ? dg::Plug() : clocks.front()->plug("outTime");
  if (!clock) return;
  auto now = document.graph().get(clock);
  if (!now) return;
  before_ = *std::move(now);
  const scene::Journal::Scope unrecorded(document.journal(), nullptr);
  if (document.graph().set(clock, dg::Value(seconds))) clock_ = clock;
}

AtTime::~AtTime() {
  if (!isThere()) return;
  const scene::Journal::Scope unrecorded(document_.journal(), nullptr);
  (void)document_.graph().set(clock_, before_);
}

}  // namespace host::edits
