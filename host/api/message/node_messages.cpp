#include <maya/MDGMessage.h>
#include <maya/MDGModifier.h>
#include <maya/MDagMessage.h>
#include <maya/MModelMessage.h>
#include <maya/MNodeMessage.h>
#include <maya/MPlug.h>
#include <maya/MPolyMessage.h>
#include <maya/MTime.h>

#include "host/api/message/callbacks.h"

using namespace host;
using api::CallbackKind;
using api::Callbacks;
using api::Happening;
using api::setStatus;

namespace {

template <class Function>
const void* address(Function function) {
  return reinterpret_cast<const void*>(function);
}

template <class Function>
MCallbackId add(Callbacks::Callback callback, Function function, MStatus* status) {
  setStatus(status, function ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return function ? api::callbacks().add(std::move(callback), address(function)) : 0;
}

/// For one node; a null object means all where `mayBeAll`, and is refused otherwise.
template <class Function>
MCallbackId addForNode(const MObject& node, bool mayBeAll, CallbackKind kind,
                       std::function<void(Happening&)> call, Function function, MStatus* status) {
  dg::Node* inner = api::nodeOf(node);
  if (!inner && !(mayBeAll && node.isNull())) {
    setStatus(status, MStatus::kInvalidParameter);
    return 0;
  }
  Callbacks::Callback callback;
  callback.kind = kind;
  callback.isForOneNode = inner != nullptr;
  if (inner) callback.node = inner->weak_from_this();
  callback.call = std::move(call);
  return add(std::move(callback), function, status);
}

std::function<void(Happening&)> withPlugs(MNodeMessage::MAttr2PlugFunction func, void* clientData) {
  return [func, clientData](Happening& what) {
    MPlug plug = api::wrap(what.plug), other = api::wrap(what.other);
    func(static_cast<MNodeMessage::AttributeMessage>(what.message), plug, other, clientData);
  };
}
std::function<void(Happening&)> withNode(MMessage::MNodeFunction func, void* clientData) {
  return [func, clientData](Happening& what) {
    MObject node = api::wrap(what.node);
    func(node, clientData);
  };
}
std::function<void(Happening&)> plain(MMessage::MBasicFunction func, void* clientData) {
  return [func, clientData](Happening&) { func(clientData); };
}

}  // namespace

MCallbackId MNodeMessage::addAttributeChangedCallback(MObject& node, MAttr2PlugFunction func,
                                                      void* clientData, MStatus* status) {
  return addForNode(node, true, CallbackKind::AttributeChanged, withPlugs(func, clientData), func,
                    status);
}
MCallbackId MNodeMessage::addAttributeAddedOrRemovedCallback(MObject& node, MAttr2PlugFunction func,
                                                             void* clientData, MStatus* status) {
  return addForNode(node, true, CallbackKind::AttributeAddedOrRemoved, withPlugs(func, clientData),
                    func, status);
}
MCallbackId MNodeMessage::addNodeDirtyCallback(MObject& node, MNodeFunction func, void* clientData,
                                               MStatus* status) {
  return addForNode(node, false, CallbackKind::NodeDirty, withNode(func, clientData), func, status);
}
MCallbackId MNodeMessage::addNodeDirtyPlugCallback(MObject& node, MNodePlugFunction func,
                                                   void* clientData, MStatus* status) {
  const auto call = [func, clientData](Happening& what) {
    MObject object = api::wrap(what.node);
    MPlug plug = api::wrap(what.plug);
    func(object, plug, clientData);
  };
  return addForNode(node, false, CallbackKind::NodeDirtyPlug, call, func, status);
}
MCallbackId MNodeMessage::addNameChangedCallback(MObject& node, MNodeStringFunction func,
                                                 void* clientData, MStatus* status) {
  const auto call = [func, clientData](Happening& what) {
    MObject object = api::wrap(what.node);
    func(object, api::toMString(what.text), clientData);
  };
  return addForNode(node, true, CallbackKind::NameChanged, call, func, status);
}
MCallbackId MNodeMessage::addNodeAboutToDeleteCallback(MObject& node, MNodeModifierFunction func,
                                                       void* clientData, MStatus* status) {
  const auto call = [func, clientData](Happening& what) {
    MObject object = api::wrap(what.node);
    func(object, *what.modifier, clientData);
  };
  return addForNode(node, false, CallbackKind::NodeAboutToDelete, call, func, status);
}
MCallbackId MNodeMessage::addNodePreRemovalCallback(MObject& node, MNodeFunction func,
                                                    void* clientData, MStatus* status) {
  return addForNode(node, false, CallbackKind::NodePreRemoval, withNode(func, clientData), func,
                    status);
}
MCallbackId MNodeMessage::addNodeDestroyedCallback(MObject& node, MBasicFunction func,
                                                   void* clientData, MStatus* status) {
  return addForNode(node, false, CallbackKind::NodeDestroyed, plain(func, clientData), func,
                    status);
}

namespace {

MCallbackId addForType(CallbackKind kind, MMessage::MNodeFunction func, const MString& nodeType,
                       void* clientData, MStatus* status) {
  const std::string name = nodeType.asChar();
  if (!name.empty() && name != "dependNode" && !api::document().types().find(name)) {
    setStatus(status, MStatus::kInvalidParameter);
    return 0;
  }
  Callbacks::Callback callback;
  callback.kind = kind;
  callback.subject = name;
  callback.call = withNode(func, clientData);
  return add(std::move(callback), func, status);
}

MCallbackId addTime(MMessage::MTimeFunction func, void* clientData, MStatus* status) {
  Callbacks::Callback callback;
  callback.kind = CallbackKind::TimeChanged;
  callback.call = [func, clientData](Happening&) {
    dg::Plug plug;
    if (const auto found = api::document().plug("time1.outTime")) plug = *found;
    MTime now = plug ? api::wrap(plug).asMTime() : MTime();
    func(now, clientData);
  };
  return add(std::move(callback), func, status);
}

MCallbackId addDag(int message, MMessage::MParentChildFunction func, void* clientData,
                   MStatus* status) {
  Callbacks::Callback callback;
  callback.kind = CallbackKind::DagChange;
  callback.message = message;
  callback.call = [func, clientData](Happening& what) {
    func(what.child, what.parent, clientData);
  };
  return add(std::move(callback), func, status);
}

MCallbackId addPlain(CallbackKind kind, MMessage::MBasicFunction func, void* clientData,
                     MStatus* status) {
  Callbacks::Callback callback;
  callback.kind = kind;
  callback.call = plain(func, clientData);
  return add(std::move(callback), func, status);
}

}  // namespace

MCallbackId MDGMessage::addTimeChangeCallback(MTimeFunction func, void* clientData,
                                              MStatus* status) {
  return addTime(func, clientData, status);
}
MCallbackId MDGMessage::addForceUpdateCallback(MTimeFunction func, void* clientData,
                                               MStatus* status) {
  return addTime(func, clientData, status);
}
MCallbackId MDGMessage::addNodeAddedCallback(MNodeFunction func, const MString& nodeType,
                                             void* clientData, MStatus* status) {
  return addForType(CallbackKind::NodeAdded, func, nodeType, clientData, status);
}
MCallbackId MDGMessage::addNodeRemovedCallback(MNodeFunction func, const MString& nodeType,
                                               void* clientData, MStatus* status) {
  return addForType(CallbackKind::NodeRemoved, func, nodeType, clientData, status);
}
MCallbackId MDGMessage::addConnectionCallback(MPlugFunction func, void* clientData,
                                              MStatus* status) {
  Callbacks::Callback callback;
  callback.kind = CallbackKind::Connection;
  callback.call = [func, clientData](Happening& what) {
    MPlug source = api::wrap(what.other), destination = api::wrap(what.plug);
    func(source, destination, what.flag, clientData);
  };
  return add(std::move(callback), func, status);
}
MCallbackId MDGMessage::addPreConnectionCallback(MPlugFunction, void*, MStatus* status) {
  api::rememberError(
      Error{"Connections are told of when they are made; there is no message before"});
  setStatus(status, MStatus::kFailure);
  return 0;
}

MCallbackId MDagMessage::addParentAddedCallback(MParentChildFunction func, void* data,
                                                MStatus* status) {
  return addDag(kParentAdded, func, data, status);
}
MCallbackId MDagMessage::addParentRemovedCallback(MParentChildFunction func, void* data,
                                                  MStatus* status) {
  return addDag(kParentRemoved, func, data, status);
}
MCallbackId MDagMessage::addChildAddedCallback(MParentChildFunction func, void* data,
                                               MStatus* status) {
  return addDag(kChildAdded, func, data, status);
}
MCallbackId MDagMessage::addChildRemovedCallback(MParentChildFunction func, void* data,
                                                 MStatus* status) {
  return addDag(kChildRemoved, func, data, status);
}
MCallbackId MDagMessage::addInstanceAddedCallback(MParentChildFunction func, void* data,
                                                  MStatus* status) {
  return addDag(kInstanceAdded, func, data, status);
}
MCallbackId MDagMessage::addInstanceRemovedCallback(MParentChildFunction func, void* data,
                                                    MStatus* status) {
  return addDag(kInstanceRemoved, func, data, status);
}
MCallbackId MDagMessage::addAllDagChangesCallback(MMessageParentChildFunction func,
                                                  void* clientData, MStatus* status) {
  Callbacks::Callback callback;
  callback.kind = CallbackKind::DagChange;
  callback.message = -1;
  callback.call = [func, clientData](Happening& what) {
    func(static_cast<DagMessage>(what.message), what.child, what.parent, clientData);
  };
  return add(std::move(callback), func, status);
}

MCallbackId MModelMessage::addCallback(Message, MBasicFunction func, void* clientData,
                                       MStatus* status) {
  return addPlain(CallbackKind::SelectionChanged, func, clientData, status);
}
MCallbackId MModelMessage::addBeforeDuplicateCallback(MBasicFunction func, void* clientData,
                                                      MStatus* status) {
  return addPlain(CallbackKind::BeforeDuplicate, func, clientData, status);
}
MCallbackId MModelMessage::addAfterDuplicateCallback(MBasicFunction func, void* clientData,
                                                     MStatus* status) {
  return addPlain(CallbackKind::AfterDuplicate, func, clientData, status);
}
MCallbackId MModelMessage::addNodeAddedToModelCallback(MObject& node, MNodeFunction func,
                                                       void* clientData, MStatus* status) {
  return addForNode(node, true, CallbackKind::NodeAddedToModel, withNode(func, clientData), func,
                    status);
}
MCallbackId MModelMessage::addNodeRemovedFromModelCallback(MObject& node, MNodeFunction func,
                                                           void* clientData, MStatus* status) {
  return addForNode(node, true, CallbackKind::NodeRemovedFromModel, withNode(func, clientData),
                    func, status);
}

MCallbackId MPolyMessage::addPolyTopologyChangedCallback(MObject& node, MNodeFunction func,
                                                         void* clientData, MStatus* status) {
  // Whatever dirties the mesh that comes out may have changed its topology.
  const auto call = [func, clientData](Happening& what) {
    if (what.plug.attribute()->longName != "outMesh") return;
    MObject object = api::wrap(what.node);
    func(object, clientData);
  };
  return addForNode(node, false, CallbackKind::NodeDirtyPlug, call, func, status);
}
MCallbackId MPolyMessage::addUVSetChangedCallback(MObject&, MUVSetChangedFunction, void*,
                                                  MStatus* status) {
  api::rememberError(
      Error{"There are no messages for UV sets; wait for changes of the shape's attributes"});
  setStatus(status, MStatus::kFailure);
  return 0;
}
