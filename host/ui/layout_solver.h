#pragma once

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "host/ui/geometry.h"

namespace host::ui {

/// One control of a window that is being laid out.
struct LayoutItem {
  const Control* control = nullptr;
  std::vector<std::size_t> children;  ///< managed layouts and controls, in order
  Size natural;
  Rect rect, clip;
  bool isVisible = true;
};

/// A window that is being laid out: sizes from the leaves up, then places from the top down.
class LayoutSolver {
 public:
  LayoutSolver(const Control& root, const Looks& looks);

  /// Places all, the root in `rect`.
  void place(const Rect& rect);

  [[nodiscard]] const std::vector<LayoutItem>& items() const { return items_; }
  [[nodiscard]] LayoutItem& child(const LayoutItem& item, std::size_t index) {
    return items_[item.children[index]];
  }
  [[nodiscard]] const LayoutItem& child(const LayoutItem& item, std::size_t index) const {
    return items_[item.children[index]];
  }
  [[nodiscard]] const Looks& looks() const { return looks_; }
  std::vector<PanelPlace> panels;

 private:
  void collect(const Control& root);
  [[nodiscard]] Size naturalOf(const LayoutItem& item) const;

  const Looks& looks_;
  std::vector<LayoutItem> items_;  ///< parents first
};

/// How one kind of layout arranges its children.
struct LayoutRule {
  std::string_view type;
  Size (*natural)(const LayoutSolver& solver, const LayoutItem& layout);
  /// Gives each child its rectangle; those that don't show are marked.
  void (*place)(LayoutSolver& solver, LayoutItem& layout);
};

/// The rules of the kinds, by family.
[[nodiscard]] std::span<const LayoutRule> rowRules();    ///< columns, rows, grids
[[nodiscard]] std::span<const LayoutRule> formRules();   ///< forms
[[nodiscard]] std::span<const LayoutRule> frameRules();  ///< windows, frames, tabs, scrolled areas
[[nodiscard]] std::span<const LayoutRule> paneRules();

/// The entry of a keyed attribute whose first argument is `key`; null without one.
[[nodiscard]] const Values* entryOf(const Control& control, std::string_view attribute, int key);

/// Children one below the other, as wide as the area: what holds a single child does with more.
[[nodiscard]] Size stackedSize(const LayoutSolver& solver, const LayoutItem& layout);
void placeStacked(LayoutSolver& solver, const LayoutItem& layout, const Rect& area);

/// A rectangle made smaller on all sides, never below nothing.
[[nodiscard]] Rect inset(const Rect& rect, int horizontal, int vertical);

}  // namespace host::ui
