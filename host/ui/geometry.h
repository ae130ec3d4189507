#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/ui/tree.h"

namespace host::ui {

/// Pixels.
struct Size {
  int width = 0, height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

/// Pixels from the upper left corner of the window's inside, y down.
struct Rect {
  int left = 0, top = 0, width = 0, height = 0;
  [[nodiscard]] int right() const { return left + width; }
  [[nodiscard]] int bottom() const { return top + height; }
  friend bool operator==(const Rect&, const Rect&) = default;
};

/// How large things are that the tree doesn't say: of the font and the looks of whoever shows it.
struct Looks {
  /// What a control that is no layout needs; empty: by its kind and text, `characterWidth` wide a
  /// character.
  std::function<Size(const Control&)> sizeOf;
  int characterWidth = 7, lineHeight = 22;
  int menuBarHeight = 22, tabHeight = 26, frameLabelHeight = 22;
};

/// Where one layout or control stands.
struct Placed {
  const Control* control = nullptr;
  Rect rect;
  Rect clip;              ///< what of it can show: scroll layouts cut their children off
  bool isVisible = true;  ///< it and all above it show: tabs, collapsed frames, -visible
};

/// A pane that shows a panel, which is no control.
struct PanelPlace {
  std::string panel;
  Rect rect;
};

/// A window laid out.
struct Geometry {
  std::vector<Placed> placed;  ///< the layouts and controls that are managed, parents first
  std::vector<PanelPlace> panels;
  std::unordered_map<const Control*, std::size_t> index;  ///< into `placed`

  /// Where a control stands; null when it isn't managed.
  [[nodiscard]] const Placed* find(const Control& control) const {
    const auto found = index.find(&control);
    return found == index.end() ? nullptr : &placed[found->second];
  }
};

/// Lays a window (or one layout) out in a rectangle of that size. Changes nothing; the same tree
/// gives the same geometry. Linear in the controls; nesting costs no stack.
[[nodiscard]] Geometry layOut(const Control& root, Size size, const Looks& looks = {});

/// The size that a window or layout would best have.
[[nodiscard]] Size naturalSize(const Control& root, const Looks& looks = {});

}  // namespace host::ui
