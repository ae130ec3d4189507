#include "host/api/graph/modifier.h"

#include <maya/MDagModifier.h>

#include "host/api/message/callbacks.h"
#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/dg/connection_check.h"
#include "host/scene/replay.h"

namespace host::api {

ModifierRep::~ModifierRep() {
  // Nodes of a run that never came are taken away again, if their scene is still there.
  if (created.isEmpty() || !cmd::hasSession() || scene != &cmd::currentSession().document()) return;
  const scene::Journal::Scope unrecorded(scene->journal(), nullptr);
  (void)created.undo();  // what was deleted meanwhile is gone anyway
}

Result<dg::NodePtr> ModifierRep::create(const std::string& type, dg::Node* parent) {
  scene = &document();
  const scene::Journal::Scope recording(scene->journal(), &created);
  const NewNodesHeld held(untold);
  return scene->createNode(type, {}, parent);
}

Result<void> ModifierRep::run() {
  scene::Journal& journal = document().journal();
  if (isTakenBack) {
    const scene::ReplayScope replay(journal);
    HOST_TRY(done.redo());
    isTakenBack = false;
  }
  scene::ChangeSet batch = std::move(created);
  created = scene::ChangeSet();
  tellOfNewNodes(std::exchange(untold, {}));
  const auto queued = std::exchange(steps, {});
  Result<void> result;
  {
    const scene::Journal::Scope recording(journal, &batch);
    result = cmd::currentSession().dispatcher().collectInto(batch, [&]() -> Result<void> {
      for (const auto& step : queued) HOST_TRY(step());
      return {};
    });
  }
  if (result && scene::isReplaying() && journal.isRecording()) {
    journal.record(scene::makeChange(std::move(batch)));  // by a callback that edits along
    return {};
  }
  if (result) {
    done.append(std::move(batch));
    return {};
  }
  const scene::ReplayScope replay(journal);
  const scene::PutBackScope putBack;
  HOST_TRY(batch.undo());
  return result;
}

Result<void> ModifierRep::takeBack() {
  if (isTakenBack) return {};
  const scene::ReplayScope replay(document().journal());
  HOST_TRY(created.undo());
  created = scene::ChangeSet();
  HOST_TRY(done.undo());
  isTakenBack = true;
  return {};
}

namespace {

dg::Node* aliveNode(const MObject& object) {
  dg::Node* node = nodeOf(object);
  return node && node->isAlive() ? node : nullptr;
}

MStatus remember(Error error) {
  rememberError(error);
  return MStatus::kFailure;
}

MObject created(ModifierRep& rep, const dg::NodeType* type, dg::Node* parent, bool asDag,
                MStatus* status) {
  const bool isDag = type && type->isA("dagNode");
  if (!type || isDag != asDag) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  const auto node = rep.create(type->name, parent);
  setStatus(status, toStatus(node).statusCode());
  if (!node) return MObject();
  if (!parent && scene::isShape(**node)) return wrap(scene::firstPath(**node).transform().node());
  return wrap(*node);
}

MStatus queueValue(ModifierRep& rep, const MPlug& plug, dg::Value value) {
  const dg::Plug target = plugOf(plug);
  if (target.isNull()) return MStatus::kInvalidParameter;
  rep.add([plug, value = std::move(value)]() -> Result<void> {
    const dg::Plug now = plugOf(plug);
    if (now.isNull()) return fail("A plug to be set is gone");
    return now.node()->graph().set(now, value);
  });
  return MStatus::kSuccess;
}

/// A step on a node, if it is still there when its turn comes.
MStatus queueNode(ModifierRep& rep, const MObject& node,
                  std::function<Result<void>(dg::Node&)> step) {
  if (!nodeOf(node)) return MStatus::kInvalidParameter;
  rep.add([node, step = std::move(step)]() -> Result<void> {
    dg::Node* now = aliveNode(node);
    if (!now) return fail("Node '{}' is deleted", nodeOf(node)->name());
    return step(*now);
  });
  return MStatus::kSuccess;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::modifierOf;
using api::plugOf;
using api::setStatus;

MDGModifier::MDGModifier() : handle_(new api::ModifierRep) {}
MDGModifier::~MDGModifier() = default;

MObject MDGModifier::createNode(const MTypeId& typeId, MStatus* status) {
  return api::created(modifierOf(*this), api::document().types().find(typeId.id()), nullptr, false,
                      status);
}
MObject MDGModifier::createNode(const MString& type, MStatus* status) {
  return api::created(modifierOf(*this), api::document().types().find(type.asChar()), nullptr,
                      false, status);
}
MStatus MDGModifier::deleteNode(const MObject& node) {
  return api::queueNode(modifierOf(*this), node,
                        [](dg::Node& each) { return api::document().deleteNodes({&each}); });
}
MStatus MDGModifier::deleteNode(const MObject& node, bool) {
  return deleteNode(node);
}
MStatus MDGModifier::renameNode(const MObject& node, const MString& newName) {
  const std::string name = newName.asChar();
  if (name.empty()) return MStatus::kInvalidParameter;
  return api::queueNode(modifierOf(*this), node, [name](dg::Node& each) -> Result<void> {
    const auto renamed = api::document().rename(each, name);
    if (!renamed) return failWith(renamed.error());
    return {};
  });
}
MStatus MDGModifier::setNodeLockState(const MObject& node, bool newState) {
  return api::queueNode(modifierOf(*this), node, [newState](dg::Node& each) {
    return each.graph().setNodeLocked(each, newState);
  });
}

MStatus MDGModifier::connect(const MObject& sourceNode, const MObject& sourceAttr,
                             const MObject& destNode, const MObject& destAttr) {
  return connect(MPlug(sourceNode, sourceAttr), MPlug(destNode, destAttr));
}
MStatus MDGModifier::connect(const MPlug& source, const MPlug& dest) {
  if (plugOf(source).isNull() || plugOf(dest).isNull()) return MStatus::kInvalidParameter;
  // What can never be connected is refused here, by the status alone.
  if (const auto fits = dg::checkConnection(plugOf(source), plugOf(dest)); !fits)
    return api::toStatus(fits);
  modifierOf(*this).add([source, dest]() -> Result<void> {
    const dg::Plug from = plugOf(source), to = plugOf(dest);
    if (from.isNull() || to.isNull()) return fail("A plug to be connected is gone");
    return from.node()->graph().connect(from, to);
  });
  return MStatus::kSuccess;
}
MStatus MDGModifier::disconnect(const MObject& sourceNode, const MObject& sourceAttr,
                                const MObject& destNode, const MObject& destAttr) {
  return disconnect(MPlug(sourceNode, sourceAttr), MPlug(destNode, destAttr));
}
MStatus MDGModifier::disconnect(const MPlug& source, const MPlug& dest) {
  if (plugOf(source).isNull() || plugOf(dest).isNull()) return MStatus::kInvalidParameter;
  modifierOf(*this).add([source, dest]() -> Result<void> {
    const dg::Plug from = plugOf(source), to = plugOf(dest);
    if (from.isNull() || to.isNull()) return fail("A plug to be disconnected is gone");
    return from.node()->graph().disconnect(from, to);
  });
  return MStatus::kSuccess;
}
MStatus MDGModifier::addAttribute(const MObject& node, const MObject& attribute) {
  const auto* rep = api::objectAs<api::AttributeRep>(attribute);
  if (!rep) return MStatus::kInvalidParameter;
  return api::queueNode(modifierOf(*this), node,
                        [added = rep->attribute](dg::Node& each) -> Result<void> {
                          const auto done = each.graph().addAttribute(each, added);
                          if (!done) return failWith(done.error());
                          return {};
                        });
}
MStatus MDGModifier::addAttribute(const MObject& node, const MObject& attribute,
                                  MFnDependencyNode::MAttrClass) {
  return addAttribute(node, attribute);
}
MStatus MDGModifier::removeAttribute(const MObject& node, const MObject& attribute) {
  const auto* rep = api::objectAs<api::AttributeRep>(attribute);
  if (!rep) return MStatus::kInvalidParameter;
  return api::queueNode(modifierOf(*this), node, [removed = rep->attribute](dg::Node& each) {
    return each.graph().removeAttribute(each, removed.get());
  });
}
MStatus MDGModifier::removeAttribute(const MObject& node, const MObject& attribute,
                                     MFnDependencyNode::MAttrClass) {
  return removeAttribute(node, attribute);
}
MStatus MDGModifier::removeMultiInstance(const MPlug& plug, bool breakConnections) {
  const dg::Plug element = plugOf(plug);
  if (element.isNull() || !element.isElement()) return MStatus::kInvalidParameter;
  modifierOf(*this).add([plug, breakConnections]() -> Result<void> {
    const dg::Plug now = plugOf(plug);
    if (now.isNull()) return fail("An element to be removed is gone");
    return now.node()->graph().removeElement(now, breakConnections);
  });
  return MStatus::kSuccess;
}

MStatus MDGModifier::newPlugValue(const MPlug& plug, const MObject& value) {
  if (plugOf(plug).isNull() || !api::objectAs<api::DataRep>(value))
    return MStatus::kInvalidParameter;
  modifierOf(*this).add([plug, value]() -> Result<void> {
    if (plug.setMObject(value)) return {};
    return fail("{}", api::takeRememberedError());
  });
  return MStatus::kSuccess;
}
#define HOST_NEW_VALUE(Name, Type, converted)                              \
  MStatus MDGModifier::newPlugValue##Name(const MPlug& plug, Type value) { \
    return api::queueValue(modifierOf(*this), plug, dg::Value(converted)); \
  }
HOST_NEW_VALUE(Bool, bool, std::int64_t{value})
HOST_NEW_VALUE(Char, char, std::int64_t{value})
HOST_NEW_VALUE(Short, short, std::int64_t{value})
HOST_NEW_VALUE(Int, int, std::int64_t{value})
HOST_NEW_VALUE(Int64, MInt64, std::int64_t{value})
HOST_NEW_VALUE(Float, float, static_cast<double>(value))
HOST_NEW_VALUE(Double, double, value)
HOST_NEW_VALUE(String, const MString&, api::toStd(value))
HOST_NEW_VALUE(MAngle, const MAngle&, value.asRadians())
HOST_NEW_VALUE(MDistance, const MDistance&, value.asCentimeters())
HOST_NEW_VALUE(MTime, const MTime&, value.as(MTime::kSeconds))
#undef HOST_NEW_VALUE

MStatus MDGModifier::commandToExecute(const MString& command) {
  const std::string text = command.asChar();
  modifierOf(*this).add([text]() -> Result<void> {
    const auto result = cmd::currentSession().executeLine(text, {.postErrors = false});
    if (!result) return failWith(result.error());
    return {};
  });
  return MStatus::kSuccess;
}
MStatus MDGModifier::pythonCommandToExecute(const MString&) {
  return api::remember(Error{"There is no Python interpreter in this host."});
}

MStatus MDGModifier::doIt() {
  const auto done = modifierOf(*this).run();
  if (!done) postMessage(MessageKind::Error, done.error().message);
  return api::toStatus(done);
}
MStatus MDGModifier::undoIt() {
  const auto undone = modifierOf(*this).takeBack();
  if (!undone) postMessage(MessageKind::Error, undone.error().message);
  return api::toStatus(undone);
}

MDagModifier::MDagModifier() = default;
MDagModifier::~MDagModifier() = default;

MObject MDagModifier::createNode(const MTypeId& typeId, const MObject& parent, MStatus* status) {
  const dg::NodeType* type = api::document().types().find(typeId.id());
  return createNode(type ? api::toMString(type->name) : MString(), parent, status);
}
MObject MDagModifier::createNode(const MString& type, const MObject& parent, MStatus* status) {
  dg::Node* above = api::nodeOf(parent);
  if (!parent.isNull() && !above) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return api::created(modifierOf(*this), api::document().types().find(type.asChar()), above, true,
                      status);
}
MStatus MDagModifier::reparentNode(const MObject& node, const MObject& newParent) {
  if (!newParent.isNull() && !api::nodeOf(newParent)) return MStatus::kInvalidParameter;
  return api::queueNode(modifierOf(*this), node, [newParent](dg::Node& each) -> Result<void> {
    if (!scene::isDagNode(each))
      return fail(ErrorKind::BadArgument, "'{}' is not in the hierarchy", each.name());
    const scene::DagPath path = scene::firstPath(each);
    dg::Node* above = api::nodeOf(newParent);
    if (path.parent().node() == above) return {};
    return api::document().reparent(path, above);
  });
}
