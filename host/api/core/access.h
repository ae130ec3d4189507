#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/detail/Handle.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/base/result.h"
#include "host/dg/graph.h"
#include "host/math/matrix4.h"
#include "host/scene/component.h"
#include "host/scene/dag.h"
#include "host/scene/document.h"
#include "host/scene/selection.h"

namespace host::api {

/// What an MObject refers to. One class a kind; function sets ask for theirs with `objectAs`.
class ObjectRep : public SharedRep {
 public:
  [[nodiscard]] virtual MFn::Type apiType() const = 0;
  [[nodiscard]] virtual bool hasFn(MFn::Type type) const = 0;
  [[nodiscard]] virtual bool equals(const ObjectRep& other) const = 0;
  /// Still part of the document (nodes), or true for what does not depend on it.
  [[nodiscard]] virtual bool isValid() const { return true; }
  [[nodiscard]] virtual std::size_t hash() const = 0;
};

class NodeRep final : public ObjectRep {
 public:
  explicit NodeRep(dg::NodePtr nodeIn) : node(std::move(nodeIn)) {}
  [[nodiscard]] MFn::Type apiType() const override;
  [[nodiscard]] bool hasFn(MFn::Type type) const override;
  [[nodiscard]] bool equals(const ObjectRep& other) const override;
  [[nodiscard]] bool isValid() const override { return node->isAlive(); }
  [[nodiscard]] std::size_t hash() const override { return std::hash<const void*>{}(node.get()); }
  const dg::NodePtr node;
};

/// The attribute of a node type or node, or one under construction by an attribute function set.
class AttributeRep final : public ObjectRep {
 public:
  explicit AttributeRep(std::shared_ptr<dg::Attribute> attributeIn)
      : attribute(std::move(attributeIn)) {}
  [[nodiscard]] MFn::Type apiType() const override;
  [[nodiscard]] bool hasFn(MFn::Type type) const override;
  [[nodiscard]] bool equals(const ObjectRep& other) const override;
  [[nodiscard]] std::size_t hash() const override {
    return std::hash<const void*>{}(attribute.get());
  }
  const std::shared_ptr<dg::Attribute> attribute;
};

/// A component set; function sets change it in place, for all who hold the object.
class ComponentRep final : public ObjectRep {
 public:
  explicit ComponentRep(scene::Component componentIn) : component(std::move(componentIn)) {}
  [[nodiscard]] MFn::Type apiType() const override;
  [[nodiscard]] bool hasFn(MFn::Type type) const override;
  [[nodiscard]] bool equals(const ObjectRep& other) const override;
  [[nodiscard]] std::size_t hash() const override { return std::hash<const void*>{}(this); }
  scene::Component component;
  /// What `addElement` collected and nobody has read yet; folded into `component` when read.
  std::vector<Index> pending;
  [[nodiscard]] scene::Component& settled();
  Index completeCount =
      0;  ///< as given to setCompleteData, for element access to a complete component
};

/// A value outside any node: mesh data, arrays, matrices, numbers. Function sets that write replace
/// `data`.
class DataRep final : public ObjectRep {
 public:
  explicit DataRep(dg::DataPtr dataIn) : data(std::move(dataIn)) {}
  [[nodiscard]] MFn::Type apiType() const override;
  [[nodiscard]] bool hasFn(MFn::Type type) const override;
  [[nodiscard]] bool equals(const ObjectRep& other) const override;
  [[nodiscard]] std::size_t hash() const override { return std::hash<const void*>{}(this); }
  dg::DataPtr data;
};

struct PathRep final : SharedRep {
  explicit PathRep(scene::DagPath pathIn) : path(std::move(pathIn)) {}
  scene::DagPath path;
};

struct PlugRep final : SharedRep {
  PlugRep(dg::NodePtr nodeIn, const dg::Plug& plugIn) : node(std::move(nodeIn)), plug(plugIn) {}
  dg::NodePtr node;
  dg::Plug plug;
};

struct SelectionRep final : SharedRep {
  explicit SelectionRep(scene::SelectionList listIn) : list(std::move(listIn)) {}
  scene::SelectionList list;
};

/// The door to the private side of the API classes.
struct Access {
  template <class T>
  [[nodiscard]] static const Handle& handle(const T& object) {
    return object.handle_;
  }
  template <class T>
  [[nodiscard]] static Handle& handle(T& object) {
    return object.handle_;
  }
  template <class Rep, class T>
  [[nodiscard]] static Rep* rep(const T& object) {
    return static_cast<Rep*>(object.handle_.get());
  }
  template <class T>
  [[nodiscard]] static T make(SharedRep* rep) {
    return T(Handle(rep));
  }
  /// An array's memory, `length` elements long and uninitialised, for filling in one pass.
  template <class Array>
  [[nodiscard]] static auto* overwrite(Array& array, unsigned int length) {
    return array.overwrite(length);
  }
  /// An array that shows shared elements.
  template <class Array>
  [[nodiscard]] static Array shown(const Handle& elements) {
    Array array;
    array.show(elements);
    return array;
  }
  /// The representation for writing: detached from other holders, made on first use.
  template <class Rep, class T>
  [[nodiscard]] static Rep& writable(T& object) {
    Handle& handle = object.handle_;
    if (!handle)
      handle = Handle(new Rep());
    else if (handle.isShared())
      handle = Handle(new Rep(*static_cast<Rep*>(handle.get())));
    return *static_cast<Rep*>(handle.get());
  }
};

// MObject.
[[nodiscard]] inline ObjectRep* objectRep(const MObject& object) {
  return Access::rep<ObjectRep>(object);
}
template <class Rep>
[[nodiscard]] Rep* objectAs(const MObject& object) {
  return dynamic_cast<Rep*>(objectRep(object));
}
[[nodiscard]] MObject wrap(dg::Node* node);
[[nodiscard]] inline MObject wrap(const dg::NodePtr& node) {
  return wrap(node.get());
}
[[nodiscard]] MObject wrap(const dg::Attribute* attribute);
[[nodiscard]] MObject wrap(scene::Component component);
[[nodiscard]] MObject wrap(dg::DataPtr data);
/// The node behind an object; null when it is something else.
[[nodiscard]] dg::Node* nodeOf(const MObject& object);
[[nodiscard]] const dg::Attribute* attributeOf(const MObject& object);
[[nodiscard]] scene::Component* componentOf(const MObject& object);
[[nodiscard]] MFn::Type fnTypeOf(const dg::Node& node);

// MDagPath, MPlug, MSelectionList.
[[nodiscard]] MDagPath wrap(const scene::DagPath& path);
[[nodiscard]] const scene::DagPath& pathOf(const MDagPath& path);  ///< the world path when unset
[[nodiscard]] MPlug wrap(const dg::Plug& plug);
[[nodiscard]] dg::Plug plugOf(const MPlug& plug);  ///< null when unset or its node died
[[nodiscard]] MSelectionList wrap(scene::SelectionList list);
[[nodiscard]] const scene::SelectionList& listOf(const MSelectionList& list);
[[nodiscard]] scene::SelectionList& writableList(MSelectionList& list);

// Strings, matrices, status.
[[nodiscard]] inline MString toMString(const std::string& text) {
  return MString(text.c_str(), static_cast<int>(text.size()));
}
[[nodiscard]] inline std::string toStd(const MString& text) {
  return std::string(text.asChar());
}
[[nodiscard]] MStringArray toMStringArray(const std::vector<std::string>& texts);
[[nodiscard]] MMatrix toMMatrix(const math::Matrix4& matrix);
[[nodiscard]] math::Matrix4 toMatrix4(const MMatrix& matrix);

/// The last fault that an API call swallowed into a status; shown when a command fails without a
/// message.
void rememberError(const Error& error);
[[nodiscard]] std::string takeRememberedError();

inline void setStatus(MStatus* status, MStatus::MStatusCode code) {
  if (status) *status = code;
}
/// The status of a kind of fault.
[[nodiscard]] MStatus::MStatusCode statusCode(ErrorKind kind);
/// The status of a Result; the message is kept for the next `perror`-less report (see lastError).
template <class T>
[[nodiscard]] MStatus toStatus(const Result<T>& result) {
  if (result) return MStatus::kSuccess;
  rememberError(result.error());
  return statusCode(result.error().kind);
}
/// The same for calls that answer every fault with one code.
template <class T>
[[nodiscard]] MStatus toStatus(const Result<T>& result, MStatus::MStatusCode code) {
  if (result) return MStatus::kSuccess;
  rememberError(result.error());
  return code;
}
/// Edits made by a plug-in outside a command's recording are not undoable; this is the document
/// they go to.
[[nodiscard]] inline scene::Document& document() {
  return scene::currentDocument();
}

}  // namespace host::api
