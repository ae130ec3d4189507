// Forms: each edge of a child hangs on the form, on a share of it, or on another child.
#include <array>
#include <cmath>

#include "host/ui/layout_solver.h"

namespace host::ui {
namespace {

/// A place along one axis of a form of any length: share * length + offset.
struct Line {
  double share = 0, offset = 0;
  [[nodiscard]] int at(int length) const {
    return static_cast<int>(std::lround(share * length + offset));
  }
};

enum Edge : std::size_t { kLeft, kRight, kTop, kBottom };
constexpr std::array<std::string_view, 4> kEdgeNames{"left", "right", "top", "bottom"};

constexpr Edge opposite(Edge edge) {
  return static_cast<Edge>(edge ^ 1U);
}
constexpr bool isFar(Edge edge) {
  return edge == kRight || edge == kBottom;
}

/// What holds one edge of one child.
struct Attachment {
  enum class To : std::uint8_t { Nothing, Form, Position, Control };
  To to = To::Nothing;
  bool isOpposite = false;  ///< the far edge of the form, or the same edge of the other control
  double offset = 0;        ///< towards the child's middle
  double share = 0;         ///< of a position
  std::size_t other = 0;    ///< child
};

struct FormChild {
  std::array<Attachment, 4> edges;
  std::array<Line, 4> lines;
  std::array<std::uint8_t, 2> state{};  ///< of each axis: 0 untouched, 1 at work, 2 known
};

/// The edges of a form's children as lines, found in the order in which they hang on one another.
class FormSolver {
 public:
  FormSolver(const LayoutSolver& solver, const LayoutItem& layout)
      : solver_(solver), layout_(layout), children_(layout.children.size()) {
    for (std::size_t i = 0; i < children_.size(); ++i)
      byName_.emplace(solver.child(layout, i).control->name, i);
    readAttachments();
    for (std::size_t i = 0; i < children_.size(); ++i)
      for (const std::size_t axis : {0, 1}) solve(i, axis);
  }

  [[nodiscard]] const std::array<Line, 4>& lines(std::size_t child) const {
    return children_[child].lines;
  }

  /// The least length of the form along an axis in which every child has its natural size.
  [[nodiscard]] int least(std::size_t axis) const {
    double length = 0;
    for (std::size_t i = 0; i < children_.size(); ++i) {
      const Line &near = children_[i].lines[2 * axis], &far = children_[i].lines[2 * axis + 1];
      const double natural = naturalOf(i, axis);
      const double grows = far.share - near.share;
      // The child's length, its far edge inside the form, its near edge not before it.
      if (grows > 0) length = std::max(length, (natural - far.offset + near.offset) / grows);
      if (far.share < 1) length = std::max(length, far.offset / (1 - far.share));
      if (near.share > 0) length = std::max(length, -near.offset / near.share);
    }
    return static_cast<int>(length + 0.999);
  }

 private:
  [[nodiscard]] double naturalOf(std::size_t child, std::size_t axis) const {
    const Size size = solver_.child(layout_, child).natural;
    return axis == 0 ? size.width : size.height;
  }

  void readAttachments() {
    for (const auto& [attribute, entries] : layout_.control->entries)
      for (const Values& entry : entries) {
        const auto child = byName_.find(asText(entry));
        const auto edge = std::find(kEdgeNames.begin(), kEdgeNames.end(), asText(entry, 1));
        if (child == byName_.end() || edge == kEdgeNames.end()) continue;
        const auto at = static_cast<std::size_t>(edge - kEdgeNames.begin());
        children_[child->second].edges.at(at) = attachment(attribute, entry);
      }
  }

  [[nodiscard]] Attachment attachment(std::string_view attribute, const Values& entry) const {
    Attachment held;
    held.offset = asReal(entry, 2);
    held.isOpposite = attribute.starts_with("attachOpposite");
    if (attribute == "attachForm" || attribute == "attachOppositeForm") {
      held.to = Attachment::To::Form;
    } else if (attribute == "attachPosition") {
      held.to = Attachment::To::Position;
      const int divisions = std::max(asInt(layout_.control->value("numberOfDivisions")), 1);
      held.share = asReal(entry, 3) / divisions;
    } else if (attribute == "attachControl" || attribute == "attachOppositeControl") {
      // A control that was removed, or takes no part, holds nothing.
      const std::string path = asText(entry, 3);
      const auto other = byName_.find(path.substr(path.rfind('|') + 1));
      if (other == byName_.end()) return {};
      held.to = Attachment::To::Control;
      held.other = other->second;
    }
    return held;
  }

  /// Where an attachment holds its edge; the control that it hangs on is solved already.
  [[nodiscard]] Line lineOf(const Attachment& held, Edge edge) const {
    const double inward = isFar(edge) ? -held.offset : held.offset;
    if (held.to == Attachment::To::Position) return {held.share, inward};
    if (held.to == Attachment::To::Form)
      return {isFar(edge) != held.isOpposite ? 1.0 : 0.0, inward};
    Line line = children_[held.other].lines[held.isOpposite ? edge : opposite(edge)];
    line.offset += inward;
    return line;
  }

  /// Solves a child's two edges along an axis, and first those that they hang on: a walk with a
  /// stack of its own, as chains may be long. Edges in a circle hang on nothing.
  void solve(std::size_t first, std::size_t axis) {
    std::vector<std::size_t> open{first};
    while (!open.empty()) {
      const std::size_t at = open.back();
      FormChild& child = children_[at];
      if (child.state[axis] == 2) {
        open.pop_back();
        continue;
      }
      child.state[axis] = 1;
      bool isWaiting = false;
      for (const std::size_t edge : {2 * axis, 2 * axis + 1}) {
        Attachment& held = child.edges[edge];
        if (held.to != Attachment::To::Control || children_[held.other].state[axis] == 2) continue;
        if (children_[held.other].state[axis] == 1) {
          held = {};
          continue;
        }
        open.push_back(held.other);
        isWaiting = true;
        break;
      }
      if (isWaiting) continue;
      finish(at, axis);
      open.pop_back();
    }
  }

  void finish(std::size_t at, std::size_t axis) {
    FormChild& child = children_[at];
    const auto near = static_cast<Edge>(2 * axis), far = static_cast<Edge>(2 * axis + 1);
    const bool hasNear = child.edges[near].to != Attachment::To::Nothing;
    const bool hasFar = child.edges[far].to != Attachment::To::Nothing;
    const double natural = naturalOf(at, axis);
    if (hasNear) child.lines[near] = lineOf(child.edges[near], near);
    if (hasFar) child.lines[far] = lineOf(child.edges[far], far);
    if (!hasNear && hasFar)
      child.lines[near] = {child.lines[far].share, child.lines[far].offset - natural};
    if (!hasFar) child.lines[far] = {child.lines[near].share, child.lines[near].offset + natural};
    child.state[axis] = 2;
  }

  const LayoutSolver& solver_;
  const LayoutItem& layout_;
  std::unordered_map<std::string_view, std::size_t> byName_;
  std::vector<FormChild> children_;
};

Size formSize(const LayoutSolver& solver, const LayoutItem& layout) {
  const FormSolver form(solver, layout);
  return {form.least(0), form.least(1)};
}

void placeForm(LayoutSolver& solver, LayoutItem& layout) {
  const FormSolver form(solver, layout);
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    const auto& lines = form.lines(i);
    const int left = lines[kLeft].at(layout.rect.width), top = lines[kTop].at(layout.rect.height);
    solver.child(layout, i).rect = {layout.rect.left + left, layout.rect.top + top,
                                    std::max(lines[kRight].at(layout.rect.width) - left, 0),
                                    std::max(lines[kBottom].at(layout.rect.height) - top, 0)};
  }
}

constexpr LayoutRule kRules[] = {{"formLayout", formSize, placeForm}};

}  // namespace

std::span<const LayoutRule> formRules() {
  return kRules;
}

}  // namespace host::ui
