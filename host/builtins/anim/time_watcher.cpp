#include "host/builtins/anim/time_watcher.h"

#include "host/nodes/anim/anim_curve.h"

namespace host::builtins {

TimeWatcher::~TimeWatcher() {
  if (graph_) graph_->removeObserver(this);
}

void TimeWatcher::watch(dg::Graph& graph) {
  graph_ = &graph;
  graph_->addObserver(this);
}

void TimeWatcher::attributeEvent(dg::AttributeEvent event, const dg::Plug& plug, const dg::Plug&) {
  if (event != dg::AttributeEvent::Set || plug.node()->type().name != "time") return;
  nodes::dirtyTimeDriven(*graph_);
}

}  // namespace host::builtins
