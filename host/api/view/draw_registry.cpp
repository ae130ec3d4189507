#include "host/api/view/draw_registry.h"

#include <algorithm>

#include "host/api/plugin/plugin_record.h"

namespace host::api {
namespace {

bool covers(std::string_view registered, std::string_view wanted) {
  if (wanted.substr(0, registered.size()) != registered) return false;
  return wanted.size() == registered.size() || wanted[registered.size()] == '/';
}

}  // namespace

DrawRegistry& drawRegistry() {
  static DrawRegistry registry;
  return registry;
}

DrawRegistry::Live::~Live() {
  // What was prepared is the override's own class of data, so it goes first.
  prepared.clear();
  drawOverride.reset();
}

bool DrawRegistry::add(std::string classification, std::string registrant, Creator creator) {
  for (const auto& other : entries_)
    if (other->classification == classification && other->registrant == registrant) return false;
  entries_.push_back(std::make_unique<Entry>());
  entries_.back()->classification = std::move(classification);
  entries_.back()->registrant = std::move(registrant);
  entries_.back()->creator = creator;
  return true;
}

bool DrawRegistry::remove(std::string_view classification, std::string_view registrant) {
  return std::erase_if(entries_, [&](const std::unique_ptr<Entry>& entry) {
           return entry->classification == classification && entry->registrant == registrant;
         }) > 0;
}

DrawRegistry::Entry* DrawRegistry::find(std::string_view nodeClassification) {
  Entry* best = nullptr;
  while (!nodeClassification.empty()) {
    const std::size_t end = std::min(nodeClassification.find(':'), nodeClassification.size());
    const std::string_view one = nodeClassification.substr(0, end);
    for (const auto& entry : entries_)
      if (covers(entry->classification, one) &&
          (!best || entry->classification.size() > best->classification.size()))
        best = entry.get();
    nodeClassification.remove_prefix(std::min(end + 1, nodeClassification.size()));
  }
  return best;
}

DrawRegistry::Live* DrawRegistry::liveOf(dg::Node& node) {
  Entry* entry = find(node.type().classification);
  if (!entry) return nullptr;
  std::unique_ptr<Live>& live = entry->live[&node];
  if (!live) {
    live = std::make_unique<Live>();
    live->node = node.shared_from_this();
    live->drawOverride.reset(entry->creator(wrap(&node)));
  }
  return live->drawOverride ? live.get() : nullptr;
}

void DrawRegistry::dropDead() {
  for (const auto& entry : entries_)
    std::erase_if(entry->live, [](const auto& item) { return !item.second->node->isAlive(); });
}

}  // namespace host::api

using namespace host;
using Kind = api::PluginRecord::Registration::Kind;

namespace MHWRender {

MStatus MDrawRegistry::registerDrawOverrideCreator(const MString& drawClassification,
                                                   const MString& registrantId,
                                                   DrawOverrideCreator creator) {
  const std::string classification = api::toStd(drawClassification),
                    registrant = api::toStd(registrantId);
  if (!creator || classification.empty()) return MStatus::kInvalidParameter;
  if (!api::drawRegistry().add(classification, registrant, creator)) return MStatus::kFailure;
  if (api::PluginRecord* record = api::registeringPlugin())
    record->add(Kind::DrawOverride, classification + "|" + registrant,
                [=] { api::drawRegistry().remove(classification, registrant); });
  return MStatus::kSuccess;
}

MStatus MDrawRegistry::deregisterDrawOverrideCreator(const MString& drawClassification,
                                                     const MString& registrantId) {
  const std::string classification = api::toStd(drawClassification),
                    registrant = api::toStd(registrantId);
  api::PluginRecord* record = api::registeringPlugin();
  const bool wasRecorded =
      record && record->remove(Kind::DrawOverride, classification + "|" + registrant);
  const bool isDone = wasRecorded || api::drawRegistry().remove(classification, registrant);
  return isDone ? MStatus::kSuccess : MStatus::kFailure;
}

}  // namespace MHWRender
