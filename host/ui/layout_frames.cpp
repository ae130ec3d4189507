// What holds one child at a time or dresses what it holds: windows, frames, tabs, scrolled areas.
#include "host/ui/layout_solver.h"

namespace host::ui {
namespace {

// window, menuBarLayout
// -----------------------------------------------------------------------------------------------

int menuBarHeight(const LayoutSolver& solver, const Control& control) {
  const bool isShown = !control.type->find("menuBarVisible") || control.isOn("menuBarVisible");
  for (const auto& child : control.children)
    if (isShown && child->type->name == "menu") return solver.looks().menuBarHeight;
  return control.type->name == "window" && isShown && control.isOn("menuBar")
             ? solver.looks().menuBarHeight
             : 0;
}

Size windowSize(const LayoutSolver& solver, const LayoutItem& layout) {
  const Size size = stackedSize(solver, layout);
  return {size.width, size.height + menuBarHeight(solver, *layout.control)};
}

void placeWindow(LayoutSolver& solver, LayoutItem& layout) {
  Rect area = layout.rect;
  const int bar = std::min(menuBarHeight(solver, *layout.control), area.height);
  area.top += bar;
  area.height -= bar;
  placeStacked(solver, layout, area);
}

// frameLayout
// -----------------------------------------------------------------------------------------------

bool isFolded(const Control& frame) {
  return frame.isOn("collapse");
}

int labelHeight(const LayoutSolver& solver, const Control& frame) {
  return frame.isOn("labelVisible") ? solver.looks().frameLabelHeight : 0;
}

Size frameSize(const LayoutSolver& solver, const LayoutItem& layout) {
  const Control& frame = *layout.control;
  Size size = stackedSize(solver, layout);
  size.width += 2 * asInt(frame.value("marginWidth"));
  size.height += 2 * asInt(frame.value("marginHeight"));
  if (isFolded(frame)) size.height = 0;
  size.height += labelHeight(solver, frame);
  const auto label = static_cast<int>(frame.text("label").size());
  size.width = std::max(size.width, label * solver.looks().characterWidth);
  return size;
}

void placeFrame(LayoutSolver& solver, LayoutItem& layout) {
  const Control& frame = *layout.control;
  Rect area = layout.rect;
  const int label = std::min(labelHeight(solver, frame), area.height);
  area.top += label;
  area.height -= label;
  placeStacked(solver, layout,
               inset(area, asInt(frame.value("marginWidth")), asInt(frame.value("marginHeight"))));
  if (!isFolded(frame)) return;
  for (std::size_t i = 0; i < layout.children.size(); ++i)
    solver.child(layout, i).isVisible = false;
}

// tabLayout
// -----------------------------------------------------------------------------------------------

int tabHeight(const LayoutSolver& solver, const Control& tabs) {
  return tabs.isOn("tabsVisible") ? solver.looks().tabHeight : 0;
}

Size tabSize(const LayoutSolver& solver, const LayoutItem& layout) {
  const Control& tabs = *layout.control;
  Size size;
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    const Size child = solver.child(layout, i).natural;
    size = {std::max(size.width, child.width), std::max(size.height, child.height)};
  }
  return {size.width + 2 * asInt(tabs.value("innerMarginWidth")),
          size.height + 2 * asInt(tabs.value("innerMarginHeight")) + tabHeight(solver, tabs)};
}

void placeTabs(LayoutSolver& solver, LayoutItem& layout) {
  const Control& tabs = *layout.control;
  Rect area = layout.rect;
  const int bar = std::min(tabHeight(solver, tabs), area.height);
  area.top += bar;
  area.height -= bar;
  area = inset(area, asInt(tabs.value("innerMarginWidth")), asInt(tabs.value("innerMarginHeight")));
  const Control* shown = tabs.selected;
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    LayoutItem& child = solver.child(layout, i);
    if (!shown) shown = child.control;
    child.rect = area;
    if (tabs.isOn("scrollable") && !tabs.isOn("childResizable"))
      child.rect = {area.left, area.top, std::max(area.width, child.natural.width),
                    std::max(area.height, child.natural.height)};
    child.clip = area;
    child.isVisible = child.isVisible && child.control == shown;
  }
}

// scrollLayout
// -----------------------------------------------------------------------------------------------

Size scrollSize(const LayoutSolver& solver, const LayoutItem& layout) {
  // It takes whatever it gets; this much shows a part of what is in it.
  const Size all = stackedSize(solver, layout);
  const Control& scroll = *layout.control;
  return {std::min(all.width, 300) + asInt(scroll.value("verticalScrollBarThickness")),
          std::min(all.height, 300)};
}

void placeScrolled(LayoutSolver& solver, LayoutItem& layout) {
  const Control& scroll = *layout.control;
  const Size all = stackedSize(solver, layout);
  const bool isFitted = scroll.isOn("childResizable");
  const int least = asInt(scroll.value("minChildWidth"));
  Rect shown = layout.rect;
  const int wanted = isFitted ? least : all.width;
  // A bar takes room, which may be what makes the other one needed.
  bool isTall = all.height > shown.height;
  const int across = isTall ? asInt(scroll.value("verticalScrollBarThickness")) : 0;
  const bool isWide = wanted > shown.width - across;
  if (isWide) shown.height -= asInt(scroll.value("horizontalScrollBarThickness"));
  isTall = all.height > shown.height;
  if (isTall) shown.width -= asInt(scroll.value("verticalScrollBarThickness"));
  shown.width = std::max(shown.width, 0);
  shown.height = std::max(shown.height, 0);
  const int width = std::max(wanted, shown.width);
  placeStacked(solver, layout, {shown.left, shown.top, width, std::max(all.height, shown.height)});
  for (std::size_t i = 0; i < layout.children.size(); ++i) solver.child(layout, i).clip = shown;
}

constexpr LayoutRule kRules[] = {
    {"window", windowSize, placeWindow},    {"menuBarLayout", windowSize, placeWindow},
    {"frameLayout", frameSize, placeFrame}, {"tabLayout", tabSize, placeTabs},
    {"shelfTabLayout", tabSize, placeTabs}, {"scrollLayout", scrollSize, placeScrolled},
};

}  // namespace

std::span<const LayoutRule> frameRules() {
  return kRules;
}

}  // namespace host::ui
