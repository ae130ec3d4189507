#pragma once

#include "host/dg/graph.h"

namespace host::builtins {

/// Has what goes by the scene's time computed anew when that was set, by whomever.
class TimeWatcher final : public dg::GraphObserver {
 public:
  TimeWatcher() = default;
  ~TimeWatcher() override;
  TimeWatcher(const TimeWatcher&) = delete;
  TimeWatcher& operator=(const TimeWatcher&) = delete;

  /// The graph outlives the watcher.
  void watch(dg::Graph& graph);

 private:
  void attributeEvent(dg::AttributeEvent event, const dg::Plug& plug, const dg::Plug&) override;
  dg::Graph* graph_ = nullptr;
};

}  // namespace host::builtins
