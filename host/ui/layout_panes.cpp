// Panes: a rectangle divided in up to four, with separators between.
#include "host/ui/behaviours.h"
#include "host/ui/layout_solver.h"

namespace host::ui {
namespace {

/// Cuts a rectangle in two along an axis, `percent` of it first, the separator between.
std::pair<Rect, Rect> cut(const Rect& rect, bool acrossWidth, double percent, int separator) {
  Rect first = rect, second = rect;
  const int length = acrossWidth ? rect.width : rect.height;
  const int free = std::max(length - separator, 0);
  const int own = static_cast<int>(free * std::clamp(percent, 0.0, 100.0) / 100 + 0.5);
  if (acrossWidth) {
    first.width = own;
    second.left += own + std::min(separator, length);
    second.width = free - own;
  } else {
    first.height = own;
    second.top += own + std::min(separator, length);
    second.height = free - own;
  }
  return {first, second};
}

/// Divides a pane layout's rectangle. `horizontal` puts panes one above the other, `vertical` side
/// by side; `top3` has one pane on top and two below it, and so on round.
class PaneCutter {
 public:
  PaneCutter(const Control& layout, const Rect& rect)
      : layout_(layout), rect_(rect), separator_(asInt(layout.value("separatorThickness"))) {}

  [[nodiscard]] std::vector<Rect> panes() const {
    const std::string how = layout_.text("configuration");
    if (how.starts_with("horizontal")) return inRow(rect_, false, countOf(how), 1);
    if (how.starts_with("vertical")) return inRow(rect_, true, countOf(how), 1);
    if (how == "quad") return quad();
    for (const char* side : {"top", "bottom", "left", "right"})
      if (how.starts_with(side)) return besides(side, countOf(how));
    return {rect_};
  }

 private:
  static std::size_t countOf(const std::string& how) {
    return static_cast<std::size_t>(std::clamp(how.back() - '0', 1, 4));
  }

  /// The share of a pane, in percent, as it was set; nothing by default.
  [[nodiscard]] double share(std::size_t pane, bool ofWidth, double otherwise) const {
    const Values* size = entryOf(layout_, "paneSize", static_cast<int>(pane));
    return size ? asReal(*size, ofWidth ? 1 : 2) : otherwise;
  }

  /// Panes `first` and on, side by side or one above the other. Each share is of the whole.
  [[nodiscard]] std::vector<Rect> inRow(Rect rest, bool acrossWidth, std::size_t count,
                                        std::size_t first) const {
    std::vector<Rect> panes;
    double left = 100;
    for (std::size_t i = 0; i + 1 < count; ++i) {
      const double own = share(first + i, acrossWidth, 100.0 / static_cast<double>(count));
      const auto [pane, others] =
          cut(rest, acrossWidth, left > 0 ? own / left * 100 : 0, separator_);
      panes.push_back(pane);
      rest = others;
      left -= own;
    }
    panes.push_back(rest);
    return panes;
  }

  /// Pane 1 along one side, the others in a row along the opposite one.
  [[nodiscard]] std::vector<Rect> besides(std::string_view side, std::size_t count) const {
    const bool acrossWidth = side == "left" || side == "right";
    const bool isFirst = side == "left" || side == "top";
    const double own = share(1, acrossWidth, 50);
    const auto [before, after] = cut(rect_, acrossWidth, isFirst ? own : 100 - own, separator_);
    std::vector<Rect> panes{isFirst ? before : after};
    for (const Rect& pane : inRow(isFirst ? after : before, !acrossWidth, count - 1, 2))
      panes.push_back(pane);
    return panes;
  }

  /// 1 upper left, 2 upper right, 3 lower right, 4 lower left.
  [[nodiscard]] std::vector<Rect> quad() const {
    const auto [upper, lower] = cut(rect_, false, share(1, false, 50), separator_);
    const double width = share(1, true, 50);
    const auto [one, two] = cut(upper, true, width, separator_);
    const auto [four, three] = cut(lower, true, width, separator_);
    return {one, two, three, four};
  }

  const Control& layout_;
  Rect rect_;
  int separator_;
};

Size paneSize(const LayoutSolver& solver, const LayoutItem& layout) {
  Size size{320, 240};  // a view can be as small as one likes
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    const Size child = solver.child(layout, i).natural;
    size = {std::max(size.width, child.width), std::max(size.height, child.height)};
  }
  return size;
}

void placePanes(LayoutSolver& solver, LayoutItem& layout) {
  const std::vector<Rect> panes = PaneCutter(*layout.control, layout.rect).panes();
  std::unordered_map<std::string, std::size_t> byName;
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    LayoutItem& child = solver.child(layout, i);
    byName.emplace(child.control->name, i);
    child.rect = {layout.rect.left, layout.rect.top, 0, 0};
    child.isVisible = false;
  }
  for (std::size_t i = 0; i < panes.size(); ++i) {
    const std::string name = asText(paneAt(*layout.control, i + 1));
    if (const auto child = byName.find(name); child != byName.end()) {
      solver.child(layout, child->second).rect = panes[i];
      solver.child(layout, child->second).isVisible = layout.isVisible;
    } else if (!name.empty() && layout.isVisible) {
      solver.panels.push_back({name, panes[i]});
    }
  }
}

constexpr LayoutRule kRules[] = {{"paneLayout", paneSize, placePanes}};

}  // namespace

std::span<const LayoutRule> paneRules() {
  return kRules;
}

}  // namespace host::ui
