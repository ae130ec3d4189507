#include "host/ui/geometry.h"

#include "host/ui/layout_solver.h"

namespace host::ui {
namespace {

bool isPlaced(const Control& control) {
  return (control.isKind(Kind::Layout) || control.isKind(Kind::Control)) &&
         (!control.type->find("manage") || control.isOn("manage"));
}

const LayoutRule* ruleOf(const Control& control) {
  static const auto* const rules = [] {
    auto* all = new std::unordered_map<std::string_view, const LayoutRule*>();
    for (const auto family : {rowRules(), formRules(), frameRules(), paneRules()})
      for (const LayoutRule& rule : family) all->emplace(rule.type, &rule);
    return all;
  }();
  const auto found = rules->find(control.type->name);
  return found == rules->end() ? nullptr : found->second;
}

/// What a control takes by its kind and text.
Size plainSize(const Control& control, const Looks& looks) {
  const std::string_view type = control.type->name;
  const auto textWidth = [&](std::string_view attribute) {
    return control.type->find(attribute)
               ? static_cast<int>(control.text(attribute).size()) * looks.characterWidth
               : 0;
  };
  const int line = looks.lineHeight;
  if (type == "separator") return control.isOn("horizontal") ? Size{12, 3} : Size{3, 12};
  if (type == "textScrollList" || type == "scrollField") return {140, 6 * line};
  if (type.starts_with("iconText") || type == "symbolButton" || type == "shelfButton" ||
      type == "image" || type == "picture" || type == "swatchDisplayPort")
    return {34, 34};
  if (type.ends_with("Grp")) return {360, line};
  const int text = textWidth("label");
  if (type == "text") return {text, line};
  if (type.ends_with("Field") || type.ends_with("Slider")) return {80, line};
  return {std::max(text + 3 * looks.characterWidth, 40), line};
}

/// The part of `clip` that lies in `rect`.
Rect intersection(const Rect& clip, const Rect& rect) {
  const int left = std::max(clip.left, rect.left), top = std::max(clip.top, rect.top);
  return {left, top, std::max(std::min(clip.right(), rect.right()) - left, 0),
          std::max(std::min(clip.bottom(), rect.bottom()) - top, 0)};
}

}  // namespace

LayoutSolver::LayoutSolver(const Control& root, const Looks& looks) : looks_(looks) {
  collect(root);
  for (std::size_t i = items_.size(); i-- > 0;) items_[i].natural = naturalOf(items_[i]);
}

void LayoutSolver::collect(const Control& root) {
  struct Pending {
    const Control* control;
    std::size_t parent;
  };
  std::vector<Pending> pending{{&root, 0}};
  while (!pending.empty()) {
    const auto [control, parent] = pending.back();
    pending.pop_back();
    if (!items_.empty()) items_[parent].children.push_back(items_.size());
    const std::size_t own = items_.size();
    items_.push_back({control, {}, {}, {}, {}, true});
    for (auto child = control->children.rbegin(); child != control->children.rend(); ++child)
      if (isPlaced(**child)) pending.push_back({child->get(), own});
  }
}

Size LayoutSolver::naturalOf(const LayoutItem& item) const {
  const Control& control = *item.control;
  const LayoutRule* rule = ruleOf(control);
  Size size = rule            ? rule->natural(*this, item)
              : looks_.sizeOf ? looks_.sizeOf(control)
                              : plainSize(control, looks_);
  if (control.isKind(Kind::Window)) return size;
  if (const int width = asInt(control.value("width")); width > 0) size.width = width;
  const bool isFolded = control.type->find("collapse") && control.isOn("collapse");
  if (const int height = asInt(control.value("height")); height > 0 && !isFolded)
    size.height = height;
  return size;
}

void LayoutSolver::place(const Rect& rect) {
  items_.front().rect = items_.front().clip = rect;
  for (LayoutItem& item : items_) {
    if (!item.control->isKind(Kind::Window) && item.control->type->find("visible") &&
        !item.control->isOn("visible"))
      item.isVisible = false;
    const LayoutRule* rule = ruleOf(*item.control);
    if (!rule) continue;
    const Rect shown = item.clip;
    for (const std::size_t index : item.children) {
      items_[index].isVisible = item.isVisible;
      items_[index].clip = shown;
    }
    rule->place(*this, item);
    for (const std::size_t index : item.children)
      items_[index].clip = intersection(items_[index].clip, items_[index].rect);
  }
}

const Values* entryOf(const Control& control, std::string_view attribute, int key) {
  const auto found = control.entries.find(attribute);
  if (found == control.entries.end()) return nullptr;
  for (const Values& entry : found->second)
    if (asInt(entry) == key) return &entry;
  return nullptr;
}

Size stackedSize(const LayoutSolver& solver, const LayoutItem& layout) {
  Size size;
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    const Size child = solver.child(layout, i).natural;
    size.width = std::max(size.width, child.width);
    size.height += child.height;
  }
  return size;
}

void placeStacked(LayoutSolver& solver, const LayoutItem& layout, const Rect& area) {
  int top = area.top;
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    LayoutItem& child = solver.child(layout, i);
    // The last one gets what is left; one that is alone, all there is, be it little.
    int height = child.natural.height;
    if (i + 1 == layout.children.size())
      height = std::max(area.bottom() - top, i == 0 ? 0 : height);
    child.rect = {area.left, top, area.width, height};
    top += height;
  }
}

Rect inset(const Rect& rect, int horizontal, int vertical) {
  return {rect.left + horizontal, rect.top + vertical, std::max(rect.width - 2 * horizontal, 0),
          std::max(rect.height - 2 * vertical, 0)};
}

Geometry layOut(const Control& root, Size size, const Looks& looks) {
  LayoutSolver solver(root, looks);
  solver.place({0, 0, size.width, size.height});
  Geometry geometry;
  geometry.placed.reserve(solver.items().size());
  for (const LayoutItem& item : solver.items()) {
    geometry.index.emplace(item.control, geometry.placed.size());
    geometry.placed.push_back({item.control, item.rect, item.clip, item.isVisible});
  }
  geometry.panels = std::move(solver.panels);
  return geometry;
}

Size naturalSize(const Control& root, const Looks& looks) {
  return LayoutSolver(root, looks).items().front().natural;
}

}  // namespace host::ui
