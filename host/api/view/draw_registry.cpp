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

bool DrawRegistry::add(Entry entry) {
  for (const Entry& other : entries_)
    if (other.classification == entry.classification && other.registrant == entry.registrant) return false;
  entries_.push_back(std::move(entry));
  ++generation_;
  return true;
}

bool DrawRegistry::remove(std::string_view classification, std::string_view registrant) {
  const std::size_t removed = std::erase_if(entries_, [&](const Entry& entry) {
    return entry.classification == classification && entry.registrant == registrant;
  });
  generation_ += removed ? 1u : 0u;
  return removed > 0;
}

const DrawRegistry::Entry* DrawRegistry::find(std::string_view nodeClassification) const {
  const Entry* best = nullptr;
  while (!nodeClassification.empty()) {
    const std::size_t end = std::min(nodeClassification.find(':'), nodeClassification.size());
    const std::string_view one = nodeClassification.substr(0, end);
    for (const Entry& entry : entries_)
      if (covers(entry.classification, one) &&
          (!best || entry.classification.size() > best->classification.size()))
        best = &entry;
    nodeClassification.remove_prefix(std::min(end + 1, nodeClassification.size()));
  }
  return best;
}

}  // namespace host::api

using namespace host;
using Kind = api::PluginRecord::Registration::Kind;

namespace MHWRender {

MStatus MDrawRegistry::registerDrawOverrideCreator(const MString& drawClassification, const MString& registrantId,
                                                   DrawOverrideCreator creator) {
  const std::string classification = api::toStd(drawClassification), registrant = api::toStd(registrantId);
  if (!creator || classification.empty()) return MStatus::kInvalidParameter;
  if (!api::drawRegistry().add({classification, registrant, creator})) return MStatus::kFailure;
  if (api::PluginRecord* record = api::registeringPlugin())
    record->add(Kind::DrawOverride, classification + "|" + registrant,
                [=] { api::drawRegistry().remove(classification, registrant); });
  return MStatus::kSuccess;
}

MStatus MDrawRegistry::deregisterDrawOverrideCreator(const MString& drawClassification, const MString& registrantId) {
  const std::string classification = api::toStd(drawClassification), registrant = api::toStd(registrantId);
  api::PluginRecord* record = api::registeringPlugin();
  const bool wasRecorded = record && record->remove(Kind::DrawOverride, classification + "|" + registrant);
  const bool isDone = wasRecorded || api::drawRegistry().remove(classification, registrant);
  return isDone ? MStatus::kSuccess : MStatus::kFailure;
}

}  // namespace MHWRender
