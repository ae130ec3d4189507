#include "brushes/brushSurfaces.h"

#include <maya/MNodeMessage.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

brushSurfaces::~brushSurfaces() = default;

brushSurfaces::entry* brushSurfaces::find(const brushSurface& surface) {
  for (entry& one : entries)
    if (one.surface.get() == &surface) return &one;
  return nullptr;
}

void brushSurfaces::onDirty(MObject&, MPlug&, void* data) {
  auto& one = *static_cast<entry*>(data);
  if (!one.isOwn) one.isStale = true;
}

std::shared_ptr<brushSurface> brushSurfaces::of(const MDagPath& mesh) {
  if (!mesh.isValid()) return nullptr;
  for (auto one = entries.begin(); one != entries.end(); ++one) {
    if (!(one->surface->mesh() == mesh)) continue;
    entries.splice(entries.begin(), entries, one);
    if (!one->isStale) return one->surface;
    one->isStale = false;
    if (one->surface->refresh()) return one->surface;
    entries.erase(one);
    break;
  }
  auto surface = std::make_shared<brushSurface>();
  // The mesh is read before it is listened to: reading may be what computes it.
  if (surface->read(mesh) != MS::kSuccess || !surface->isRead()) return nullptr;
  entries.emplace_front();
  entry& made = entries.front();
  made.surface = surface;
  MObject node = mesh.node();
  made.callbacks.add(MNodeMessage::addNodeDirtyPlugCallback(node, onDirty, &made));
  if (made.callbacks.isEmpty()) made.isStale = true;
  if (entries.size() > kKept) entries.pop_back();
  return surface;
}

bool brushSurfaces::isStale(const brushSurface& surface) {
  const entry* one = find(surface);
  return one == nullptr || one->isStale;
}

bool brushSurfaces::catchUp(brushSurface& surface) {
  entry* one = find(surface);
  if (one) one->isStale = false;
  const bool isSame = surface.refresh();
  if (!isSame) forget(surface.mesh());
  return isSame;
}

brushSurfaces::ownEdit::ownEdit(brushSurfaces& all, const brushSurface& surface) {
  if (entry* one = all.find(surface)) {
    flag = &one->isOwn;
    *flag = true;
  }
}

brushSurfaces::ownEdit::~ownEdit() {
  if (flag) *flag = false;
}

void brushSurfaces::forget(const MDagPath& mesh) {
  entries.remove_if([&](const entry& one) { return one.surface->mesh() == mesh; });
}

void brushSurfaces::clear() {
  entries.clear();
}
