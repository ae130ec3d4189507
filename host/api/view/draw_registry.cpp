#include "host/api/view/draw_registry.h"

#include "host/api/plugin/plugin_record.h"

namespace host::api {

DrawRegistry& drawRegistry() {
  static DrawRegistry registry;
  return registry;
}
GeometryRegistry& geometryRegistry() {
  static GeometryRegistry registry;
  return registry;
}

namespace {

using Kind = PluginRecord::Registration::Kind;

template <class Table>
MStatus enter(Table& (*table)(), const char* what, const MString& drawClassification,
              const MString& registrantId, typename Table::Creator creator) {
  const std::string classification = toStd(drawClassification), registrant = toStd(registrantId);
  if (!creator || classification.empty()) return MStatus::kInvalidParameter;
  if (!table().add(classification, registrant, creator)) return MStatus::kFailure;
  if (PluginRecord* record = registeringPlugin())
    record->add(Kind::DrawOverride, what + classification + "|" + registrant,
                [=] { table().remove(classification, registrant); });
  return MStatus::kSuccess;
}

template <class Table>
MStatus leave(Table& (*table)(), const char* what, const MString& drawClassification,
              const MString& registrantId) {
  const std::string classification = toStd(drawClassification), registrant = toStd(registrantId);
  PluginRecord* record = registeringPlugin();
  const bool wasRecorded =
      record && record->remove(Kind::DrawOverride, what + classification + "|" + registrant);
  const bool isDone = wasRecorded || table().remove(classification, registrant);
  return isDone ? MStatus::kSuccess : MStatus::kFailure;
}

}  // namespace
}  // namespace host::api

using namespace host;

namespace MHWRender {

MStatus MDrawRegistry::registerDrawOverrideCreator(const MString& drawClassification,
                                                   const MString& registrantId,
                                                   DrawOverrideCreator creator) {
  return api::enter(&api::drawRegistry, "", drawClassification, registrantId, creator);
}
MStatus MDrawRegistry::deregisterDrawOverrideCreator(const MString& drawClassification,
                                                     const MString& registrantId) {
  return api::leave(&api::drawRegistry, "", drawClassification, registrantId);
}
MStatus MDrawRegistry::registerGeometryOverrideCreator(const MString& drawClassification,
                                                       const MString& registrantId,
                                                       GeometryOverrideCreator creator) {
  return api::enter(&api::geometryRegistry, "geometry of ", drawClassification, registrantId,
                    creator);
}
MStatus MDrawRegistry::deregisterGeometryOverrideCreator(const MString& drawClassification,
                                                         const MString& registrantId) {
  return api::leave(&api::geometryRegistry, "geometry of ", drawClassification, registrantId);
}

}  // namespace MHWRender
