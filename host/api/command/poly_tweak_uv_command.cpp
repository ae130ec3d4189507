#include <maya/MGlobal.h>
#include <maya/MPxPolyTweakUVCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include "host/api/graph/modifier.h"
#include "host/modelling/poly_tweak_uv.h"

namespace host::api {
namespace {

MStatus toFailure(const Error& error) {
  rememberError(error);
  return MStatus::kFailure;
}

}  // namespace
}  // namespace host::api

using namespace host;

MPxPolyTweakUVCommand::MPxPolyTweakUVCommand() = default;
MPxPolyTweakUVCommand::~MPxPolyTweakUVCommand() = default;
bool MPxPolyTweakUVCommand::isUndoable() const {
  return true;
}
MStatus MPxPolyTweakUVCommand::parseSyntax(MArgDatabase&) {
  return MStatus::kSuccess;
}

MSyntax MPxPolyTweakUVCommand::newSyntax(MStatus* status) {
  MSyntax syntax;
  syntax.addFlag("-n", "-name", MSyntax::kString);
  syntax.addFlag("-ch", "-constructionHistory", MSyntax::kBoolean);
  syntax.setObjectType(MSyntax::kSelectionList);
  syntax.useSelectionAsDefault(true);
  api::setStatus(status, MStatus::kSuccess);
  return syntax;
}

MStatus MPxPolyTweakUVCommand::doIt(const MArgList& args) {
  MStatus status;
  MArgDatabase database(syntax(), args, &status);
  if (!status) return status;
  status = parseSyntax(database);
  if (!status) return status;
  MString name = "polyTweakUV#";
  bool keepsHistory = true;
  if (database.isFlagSet("-n")) database.getFlagArgument("-n", 0, name);
  if (database.isFlagSet("-ch")) database.getFlagArgument("-ch", 0, keepsHistory);

  MSelectionList objects;
  if (!database.getObjects(objects) || objects.isEmpty()) MGlobal::getActiveSelectionList(objects);
  auto items = nodes::meshItems(api::listOf(objects));
  if (!items) return api::toFailure(items.error());
  if (items->empty()) return api::toFailure({"name or select polygon objects or UVs"});

  std::vector<modelling::UvTweak> tweaks;
  for (const nodes::MeshItem& item : *items) {
    MIntArray uvs;
    for (const Index id : item.ids(scene::ComponentType::Uv)) uvs.append(id);
    MFloatArray u, v;
    status = getTweakedUVs(api::wrap(item.path.node()), uvs, u, v);
    if (!status) return status;
    std::vector<UvId> ids;
    std::vector<float> us, vs;
    for (unsigned int i = 0; i < uvs.length(); ++i) ids.push_back(uvs[i]);
    for (unsigned int i = 0; i < u.length(); ++i) us.push_back(u[i]);
    for (unsigned int i = 0; i < v.length(); ++i) vs.push_back(v[i]);
    auto tweak = modelling::UvTweak::make(item, ids, us, vs);
    if (!tweak) return api::toFailure(tweak.error());
    if (!tweak->uvs.empty()) tweaks.push_back(std::move(*tweak));
  }
  for (modelling::UvTweak& tweak : tweaks)
    api::modifierOf(change_).add([tweak = std::move(tweak), text = api::toStd(name), keepsHistory] {
      return modelling::applyUvTweak(api::document(), tweak, text, keepsHistory);
    });
  return redoIt();
}

MStatus MPxPolyTweakUVCommand::redoIt() {
  return change_.doIt();
}
MStatus MPxPolyTweakUVCommand::undoIt() {
  return change_.undoIt();
}
