#include "host/api/node/plugin_points.h"

#include <maya/MArrayDataHandle.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MPxGeometryIterator.h>

#include <algorithm>
#include <utility>

#include "host/api/data/data_handle.h"
#include "host/api/node/component_words.h"
#include "host/api/node/px_node.h"
#include "host/api/view/view_rep.h"
#include "host/scene/replay.h"

namespace host::api {
namespace {

using scene::Component;
using scene::ComponentType;
using scene::NumberedPoint;
using Caching = MPxSurfaceShape::MVertexCachingMode;

int openScopes = 0;

MPxSurfaceShape* shapeOf(dg::Node& node) {
  return dynamic_cast<MPxSurfaceShape*>(userNodeOf(node));
}

math::Vec3 toVec3(const MPoint& p) {
  return {p.x, p.y, p.z};
}

Index countIn(const MObject& group) {
  const auto* rep = objectAs<ComponentRep>(group);
  if (!rep) return 0;
  return static_cast<Index>(MFnSingleIndexedComponent(group).elementCount());
}

std::unique_ptr<MPxGeometryIterator> iteratorOf(MPxSurfaceShape& shape, const MObject& component,
                                                bool forReadOnly) {
  MObjectArray list;
  MObject one = component;
  if (!component.isNull()) list.append(component);
  return std::unique_ptr<MPxGeometryIterator>(shape.geometryIteratorSetup(list, one, forReadOnly));
}

/// The points of a component, or of the whole for a null object, by the class's iterator.
/// @return false where the class has none
bool readByIterator(MPxSurfaceShape& shape, const MObject& component,
                    std::vector<NumberedPoint>& points) {
  const auto iterator = iteratorOf(shape, component, true);
  if (!iterator || !iterator->hasPoints()) return false;
  iterator->reset();
  const int most = iterator->iteratorCount();
  for (int i = 0; i < most && !iterator->isDone(); ++i, iterator->next())
    points.push_back({iterator->index(), toVec3(iterator->point())});
  return true;
}

std::vector<dg::Plug> plugsOf(const MPxSurfaceShape& shape, const MObject& component) {
  MObject own = component;
  MSelectionList list;
  shape.componentToPlugs(own, list);
  std::vector<dg::Plug> plugs;
  for (const scene::SelectionItem& item : listOf(list).items())
    if (item.plug && item.plug.isCompound() && item.plug.attribute()->children.size() == 3)
      plugs.push_back(item.plug);
  return plugs;
}

void readByPlugs(const MPxSurfaceShape& shape, const MObject& component,
                 std::vector<NumberedPoint>& points) {
  for (const dg::Plug& plug : plugsOf(shape, component))
    if (const auto place = plug.node()->graph().getVec3(plug))
      points.push_back({plug.isElement() ? plug.logicalIndex() : 0, *place});
}

/// The matrix and the components of one call, kept so that it can be taken back and done again.
struct Move {
  dg::NodePtr node;
  MMatrix matrix;
  std::vector<Component> components;

  /// Lets the class move, or put back what is in the cache.
  void run(const MMatrix& by, Caching caching, MPointArray* cache) const {
    MPxSurfaceShape* shape = shapeOf(*node);
    if (!shape) return;
    MObjectArray objects;
    for (const Component& each : components) objects.append(wrap(each));
    const PointEditScope edits;
    const auto call = [&] {
      if (const dg::Plug tweaks = tweakArray(*shape)) {
        auto* array = new ArrayRep(editStore(), tweaks, true, Handle());
        auto handle = Access::make<MArrayDataHandle>(static_cast<SharedRep*>(array));
        shape->tweakUsing(by, objects, caching, cache, handle);
      } else {
        shape->transformUsing(by, objects, caching, cache);
      }
      return true;
    };
    (void)fenced(*node, "transformUsing", call, false);
    scheduleViewRefresh();
  }

  /// Where changes of the points go as tweaks: the control points of a shape that is fed.
  [[nodiscard]] dg::Plug tweakArray(const MPxSurfaceShape& shape) const {
    const dg::Attribute* in = attributeOf(shape.localShapeInAttr());
    const dg::Attribute* points = attributeOf(MPxSurfaceShape::mControlPoints);
    if (!in || !points || node->type().find(points->longName) != points) return {};
    const dg::Plug fed(node.get(), in);
    return node->graph().source(fed) ? dg::Plug(node.get(), points) : dg::Plug();
  }
};

/// Lets a plug-in's class take back or do again what it keeps itself. What it writes into
/// attributes thereby goes: these have records of their own.
template <class Call>
void leavingAttributes(const Call& call) {
  scene::Journal& journal = document().journal();
  scene::ChangeSet along;
  {
    const scene::Journal::Scope recording(journal, &along);
    call();
  }
  if (along.isEmpty()) return;
  const scene::ReplayScope replay(journal);
  const scene::PutBackScope putBack;
  (void)along.undo();
}

/// A move of points that the plug-in's class keeps itself: it is asked to put them back.
class MoveChange final : public dg::Change {
 public:
  MoveChange(Move move, MPointArray before) : move_(std::move(move)), before_(std::move(before)) {}

  Result<void> undo() override {
    leavingAttributes([&] {
      if (before_.length() > 0)
        move_.run(move_.matrix, MPxSurfaceShape::kRestorePoints, &before_);
      else
        move_.run(move_.matrix.inverse(), MPxSurfaceShape::kNoPointCaching, nullptr);
    });
    return {};
  }
  Result<void> redo() override {
    MPointArray before;
    leavingAttributes([&] { move_.run(move_.matrix, MPxSurfaceShape::kSavePoints, &before); });
    before_ = before;
    return {};
  }
  void visitNodes(const VisitNode& visit) const override { visit(*move_.node); }
  [[nodiscard]] std::size_t bytes() const override {
    return sizeof(*this) + before_.length() * sizeof(MPoint);
  }

 private:
  Move move_;
  MPointArray before_;
};

/// Components that a plug-in's class took away, and what it gave to bring them back.
class RemovalChange final : public dg::Change {
 public:
  RemovalChange(dg::NodePtr node, std::vector<Component> components, MDoubleArray kept)
      : node_(std::move(node)), components_(std::move(components)), kept_(std::move(kept)) {}

  Result<void> undo() override {
    Result<void> done;
    leavingAttributes([&] {
      done = call([&](MPxSurfaceShape& shape, const MObjectArray& objects) {
        return shape.undeleteComponents(objects, kept_);
      });
    });
    return done;
  }
  Result<void> redo() override {
    Result<void> done;
    leavingAttributes([&] { done = remove(); });
    return done;
  }
  /// For the first time, with what it writes into attributes for others to record.
  Result<void> remove() {
    kept_.clear();
    return call([&](MPxSurfaceShape& shape, const MObjectArray& objects) {
      return shape.deleteComponents(objects, kept_);
    });
  }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }

 private:
  template <class Call>
  Result<void> call(const Call& call) const {
    MPxSurfaceShape* shape = shapeOf(*node_);
    if (!shape) return fail("The plug-in of '{}' is gone.", node_->name());
    MObjectArray objects;
    for (const Component& each : components_) objects.append(wrap(each));
    const PointEditScope edits;
    const bool isDone = fenced(
        *node_, "deleteComponents", [&] { return call(*shape, objects); }, false);
    scheduleViewRefresh();
    if (!isDone) return fail("'{}' keeps its components.", node_->name());
    return {};
  }

  dg::NodePtr node_;
  std::vector<Component> components_;
  MDoubleArray kept_;
};

/// Runs an edit of a plug-in's class; then `own`, which takes back and does again what is in no
/// attribute, comes before what it wrote into attributes. So on the way forth the class sees the
/// attributes from before, and on the way back their records have the last word.
template <class Edit, class OwnChange>
void recorded(const Edit& edit, const OwnChange& own) {
  scene::Journal& journal = document().journal();
  if (!journal.isRecording()) return edit();
  scene::ChangeSet written;
  {
    const scene::Journal::Scope recording(journal, &written);
    edit();
  }
  if (auto change = own(written.isEmpty())) journal.record(std::move(change));
  if (!written.isEmpty()) journal.record(scene::makeChange(std::move(written)));
}

class PluginPoints final : public scene::PointShape {
 public:
  [[nodiscard]] Index count(dg::Node& node, ComponentType type) const override {
    MPxSurfaceShape* shape = shapeOf(node);
    if (!shape || type != ComponentType::Vertex) return 0;
    const auto call = [&]() -> Index {
      if (const Index known = countIn(shape->createFullVertexGroup()); known > 0) return known;
      const auto iterator = iteratorOf(*shape, MObject(), true);
      if (!iterator) return 0;
      iterator->reset();
      return iterator->iteratorCount();
    };
    return fenced(node, "createFullVertexGroup", call, Index{0});
  }

  [[nodiscard]] Result<std::optional<Component>> match(const scene::DagPath& path,
                                                       std::string_view word) const override {
    using Found = std::optional<Component>;
    dg::Node& node = *path.node();
    MPxSurfaceShape* shape = shapeOf(node);
    const auto spec = specOf(word);
    if (!shape || !spec) return Found();
    MSelectionList item, list;
    item.add(wrap(path));
    const auto call = [&] { return shape->matchComponent(item, *spec, list); };
    const auto result = fenced(node, "matchComponent", call, MPxSurfaceShape::kMatchNone);
    if (result == MPxSurfaceShape::kMatchNone || result == MPxSurfaceShape::kMatchInvalidName ||
        result == MPxSurfaceShape::kMatchInvalidAttribute)
      return Found();
    Found found;
    if (result == MPxSurfaceShape::kMatchOk)
      for (const scene::SelectionItem& each : listOf(list).items())
        for (const Component& component : each.components) {
          if (!found)
            found = component;
          else if (found->type() == component.type())
            found->unite(component);
        }
    if (!found || found->isEmpty())
      return fail(ErrorKind::NotFound, "No object matches name: {}.{}", path.partialName(), word);
    return found;
  }

  [[nodiscard]] Result<std::vector<NumberedPoint>> points(
      dg::Node& node, std::span<const Component> components) const override {
    MPxSurfaceShape* shape = shapeOf(node);
    if (!shape) return fail("The plug-in of '{}' is gone.", node.name());
    std::vector<NumberedPoint> points;
    const auto read = [&] {
      if (components.empty()) {
        if (!readByIterator(*shape, MObject(), points))
          readByPlugs(*shape, shape->createFullVertexGroup(), points);
        return true;
      }
      for (const Component& each : components) {
        MObject object = wrap(each);
        if (each.isComplete() && each.type() == ComponentType::Vertex)
          if (const MObject all = shape->createFullVertexGroup(); !all.isNull()) object = all;
        if (!readByIterator(*shape, object, points)) readByPlugs(*shape, object, points);
      }
      return true;
    };
    if (!fenced(node, "geometryIteratorSetup", read, false))
      return fail("The points of '{}' can't be read.", node.name());
    return points;
  }

  Result<void> transform(dg::Node& node, std::span<const Component> components,
                         const math::Matrix4& change) const override {
    if (!shapeOf(node)) return fail("The plug-in of '{}' is gone.", node.name());
    if (node.isLocked()) return fail("'{}' is locked.", node.name());
    Move move{node.shared_from_this(), toMMatrix(change), {}};
    for (const Component& each : components) {
      const bool isAll = each.isComplete() && each.type() == ComponentType::Vertex;
      move.components.push_back(
          isAll ? Component(each.type(), each.expanded(count(node, each.type()))) : each);
    }
    MPointArray before;
    recorded([&] { move.run(move.matrix, MPxSurfaceShape::kSavePoints, &before); },
             [&](bool isUnwritten) -> std::unique_ptr<dg::Change> {
               if (before.length() == 0 && !isUnwritten) return nullptr;
               return std::make_unique<MoveChange>(std::move(move), before);
             });
    return {};
  }

  Result<void> remove(dg::Node& node, std::span<const Component> components) const override {
    auto change = std::make_unique<RemovalChange>(
        node.shared_from_this(), std::vector<Component>(components.begin(), components.end()),
        MDoubleArray());
    Result<void> done;
    recorded(
        [&] { done = change->remove(); },
        [&](bool) -> std::unique_ptr<dg::Change> { return done ? std::move(change) : nullptr; });
    return done;
  }
};

}  // namespace

const scene::PointShape& pluginPoints() {
  static const PluginPoints points;
  return points;
}

PointEditScope::PointEditScope() {
  ++openScopes;
}
PointEditScope::~PointEditScope() {
  --openScopes;
}
bool PointEditScope::isOpen() {
  return openScopes > 0;
}

MObjectArray selectedComponents(const dg::Node& node) {
  MObjectArray found;
  for (const scene::SelectionItem& item : document().selection().items())
    if (item.isDag() && item.node.get() == &node)
      for (const Component& each : item.components) found.append(wrap(each));
  return found;
}

MPxSurfaceShape::MatchResult matchByDefault(const MPxSurfaceShape& shape,
                                            const MSelectionList& item,
                                            const MAttributeSpecArray& spec, MSelectionList& list) {
  if (spec.length() != 1 || spec[0].name() != "vtx") return MPxSurfaceShape::kMatchNone;
  dg::Node* node = nodeOf(shape.thisMObject());
  const Index count = node ? pluginPoints().count(*node, ComponentType::Vertex) : 0;
  if (count == 0) return MPxSurfaceShape::kMatchNone;
  if (spec[0].dimensions() > 1) return MPxSurfaceShape::kMatchInvalidAttributeDim;
  int from = 0, to = count - 1;
  if (spec[0].dimensions() == 1) {
    const MAttributeIndex index = spec[0][0];
    index.getLower(from);
    index.getUpper(to);
    if (from < 0 || from > to || from >= count) return MPxSurfaceShape::kMatchInvalidAttributeRange;
    to = std::min(to, count - 1);
  }
  std::vector<Index> indices;
  for (Index i = from; i <= to; ++i) indices.push_back(i);
  MDagPath path;
  if (!item.getDagPath(0, path)) return MPxSurfaceShape::kMatchNone;
  list.add(path, wrap(Component(ComponentType::Vertex, std::move(indices))));
  return MPxSurfaceShape::kMatchOk;
}

void moveByDefault(MPxSurfaceShape& shape, const MMatrix& matrix, const MObjectArray& components) {
  for (unsigned int i = 0; i < components.length(); ++i) {
    const std::vector<dg::Plug> plugs = plugsOf(shape, components[i]);
    for (const dg::Plug& plug : plugs) {
      dg::Graph& graph = plug.node()->graph();
      const auto place = graph.getVec3(plug);
      if (!place) continue;
      const auto set = graph.setVec3(plug, math::transformPoint(*place, toMatrix4(matrix)));
      if (!set) rememberError(set.error());
    }
    if (!plugs.empty() || !shape.acceptsGeometryIterator(true)) continue;
    const auto iterator = iteratorOf(shape, components[i], false);
    if (!iterator) continue;
    for (iterator->reset(); !iterator->isDone(); iterator->next())
      iterator->setPoint(iterator->point() * matrix);
  }
}

}  // namespace host::api
