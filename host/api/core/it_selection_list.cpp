#include <maya/MItSelectionList.h>

#include "host/api/core/access.h"
#include "host/api/core/fn_types.h"

namespace host::api {
namespace {

/// One stop: an item as a whole, or one component set of it.
struct Stop {
  std::size_t item = 0;
  const scene::Component* component = nullptr;
};

class SelectionWalk final : public SharedRep {
 public:
  SelectionWalk(scene::SelectionList listIn, MFn::Type filter) : list(std::move(listIn)) {
    setFilter(filter);
  }

  void setFilter(MFn::Type filter) {
    stops.clear();
    current = 0;
    for (std::size_t i = 0; i < list.items().size(); ++i) addStops(i, filter);
  }

  scene::SelectionList list;
  std::vector<Stop> stops;
  std::size_t current = 0;

 private:
  void addStops(std::size_t index, MFn::Type filter) {
    const scene::SelectionItem& item = list.items()[index];
    scene::ComponentType wanted;
    const bool wantsComponents = toComponentType(filter, wanted);
    if (item.components.empty()) {
      if (!wantsComponents && accepts(item, filter)) stops.push_back({index, nullptr});
      return;
    }
    for (const scene::Component& component : item.components)
      if (filter == MFn::kInvalid || filter == MFn::kComponent || filter == MFn::kMeshComponent ||
          (wantsComponents ? component.type() == wanted : accepts(item, filter)))
        stops.push_back({index, &component});
  }

  static bool accepts(const scene::SelectionItem& item, MFn::Type filter) {
    if (filter == MFn::kInvalid) return true;
    if (item.isDag()) return wrap(item.path).hasFn(filter);
    const dg::Node* node = item.plug.isNull() ? item.node.get() : item.plug.node();
    return node && nodeHasFn(*node, filter);
  }
};

SelectionWalk& walkOf(const Handle& handle) {
  return *static_cast<SelectionWalk*>(handle.get());
}

const scene::SelectionItem* itemOf(const Handle& handle) {
  const SelectionWalk& walk = walkOf(handle);
  return walk.current < walk.stops.size() ? &walk.list.items()[walk.stops[walk.current].item]
                                          : nullptr;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::itemOf;
using api::setStatus;
using api::walkOf;

MItSelectionList::MItSelectionList(const MSelectionList& list, MFn::Type filter, MStatus* status)
    : handle_(new api::SelectionWalk(api::listOf(list), filter)) {
  setStatus(status, MStatus::kSuccess);
}

bool MItSelectionList::isDone(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return itemOf(handle_) == nullptr;
}
MStatus MItSelectionList::next() {
  if (isDone()) return MStatus::kFailure;
  ++walkOf(handle_).current;
  return MStatus::kSuccess;
}
MStatus MItSelectionList::reset() {
  walkOf(handle_).current = 0;
  return MStatus::kSuccess;
}
MStatus MItSelectionList::setFilter(MFn::Type filter) {
  walkOf(handle_).setFilter(filter);
  return MStatus::kSuccess;
}
MItSelectionList::selItemType MItSelectionList::itemType(MStatus* status) const {
  const scene::SelectionItem* item = itemOf(handle_);
  setStatus(status, item ? MStatus::kSuccess : MStatus::kFailure);
  if (!item) return kUnknownItem;
  if (!item->plug.isNull()) return kPlugSelectionItem;
  return item->isDag() ? kDagSelectionItem : kDNselectionItem;
}
MStatus MItSelectionList::getDagPath(MDagPath& path) const {
  const scene::SelectionItem* item = itemOf(handle_);
  if (!item || !item->isDag()) return MStatus::kFailure;
  path = api::wrap(item->path);
  return MStatus::kSuccess;
}
MStatus MItSelectionList::getDagPath(MDagPath& path, MObject& component) const {
  const MStatus status = getDagPath(path);
  if (!status) return status;
  const auto& walk = walkOf(handle_);
  const scene::Component* set = walk.stops[walk.current].component;
  component = set ? api::wrap(*set) : MObject();
  // Components belong to the shape, whatever name selected them.
  if (set) path = api::wrap(walk.list.items()[walk.stops[walk.current].item].path.toShape());
  return status;
}
MStatus MItSelectionList::getDependNode(MObject& node) const {
  const scene::SelectionItem* item = itemOf(handle_);
  if (!item) return MStatus::kFailure;
  node = api::wrap(item->plug.isNull() ? item->node.get() : item->plug.node());
  return node.isNull() ? MStatus::kFailure : MStatus::kSuccess;
}
MStatus MItSelectionList::getPlug(MPlug& plug) const {
  const scene::SelectionItem* item = itemOf(handle_);
  if (!item || item->plug.isNull()) return MStatus::kFailure;
  plug = api::wrap(item->plug);
  return MStatus::kSuccess;
}
MStatus MItSelectionList::getStrings(MStringArray& names) const {
  const scene::SelectionItem* item = itemOf(handle_);
  if (!item) return MStatus::kFailure;
  const auto& walk = walkOf(handle_);
  scene::SelectionItem one = *item;
  if (const scene::Component* set = walk.stops[walk.current].component) one.components = {*set};
  scene::SelectionList single;
  single.merge(one);
  names = api::toMStringArray(single.names());
  return MStatus::kSuccess;
}
bool MItSelectionList::hasComponents(MStatus* status) const {
  const scene::SelectionItem* item = itemOf(handle_);
  setStatus(status, item ? MStatus::kSuccess : MStatus::kFailure);
  return item && !item->components.empty();
}
