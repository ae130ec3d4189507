// Columns, rows and grids.
#include <cmath>

#include "host/ui/layout_solver.h"

namespace host::ui {
namespace {

/// How a child is held in its cell along one axis.
struct Hold {
  std::string attach = "none";  ///< none, left/top, right/bottom or both
  std::string align = "left";   ///< for what isn't attached
  int offset = 0;               ///< pixels between an attached edge and the cell's
};

/// A child of the natural length in a cell from `start` on.
std::pair<int, int> heldIn(const Hold& hold, int start, int length, int natural) {
  const bool isFirst = hold.attach == "left" || hold.attach == "top";
  const bool isLast = hold.attach == "right" || hold.attach == "bottom";
  if (hold.attach == "both") return {start + hold.offset, std::max(length - 2 * hold.offset, 0)};
  if (isFirst) return {start + hold.offset, natural};
  if (isLast) return {start + length - natural - hold.offset, natural};
  if (hold.align == "right") return {start + length - natural, natural};
  if (hold.align == "center") return {start + (length - natural) / 2, natural};
  return {start, natural};
}

// columnLayout
// -----------------------------------------------------------------------------------------------

Hold columnHold(const Control& layout) {
  Hold hold;
  const Values attach = layout.value("columnAttach"), offset = layout.value("columnOffset");
  hold.attach = asText(attach);
  hold.offset = asInt(attach, 1) != 0 ? asInt(attach, 1) : asInt(offset, 1);
  hold.align = layout.text("columnAlign");
  if (layout.isOn("adjustableColumn")) hold.attach = "both";
  return hold;
}

Size columnSize(const LayoutSolver& solver, const LayoutItem& layout) {
  const Control& control = *layout.control;
  const Hold hold = columnHold(control);
  Size size = stackedSize(solver, layout);
  const auto count = static_cast<int>(layout.children.size());
  size.height += std::max(count - 1, 0) * asInt(control.value("rowSpacing"));
  const int sides = hold.attach == "both" ? 2 : hold.attach == "none" ? 0 : 1;
  size.width += sides * hold.offset;
  if (const int width = asInt(control.value("columnWidth")); width > 0) size.width = width;
  return size;
}

void placeColumn(LayoutSolver& solver, LayoutItem& layout) {
  const Control& control = *layout.control;
  const Hold hold = columnHold(control);
  int width = asInt(control.value("columnWidth"));
  if (control.isOn("adjustableColumn")) width = layout.rect.width;
  if (width <= 0) width = layout.natural.width;
  int top = layout.rect.top;
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    LayoutItem& child = solver.child(layout, i);
    const auto [left, length] = heldIn(hold, layout.rect.left, width, child.natural.width);
    child.rect = {left, top, length, child.natural.height};
    top += child.natural.height + asInt(control.value("rowSpacing"));
  }
}

// rowLayout
// -----------------------------------------------------------------------------------------------

/// What rows keep for a column: under the column's number, or in the flag for so many columns.
template <class Read>
void readColumns(const Control& layout, const std::string& attribute, std::size_t count,
                 std::size_t first, const Read& read) {
  const Values all = layout.type->find(attribute + std::to_string(count))
                         ? layout.value(attribute + std::to_string(count))
                         : Values();
  const bool isSet = layout.values.contains(attribute + std::to_string(count));
  for (std::size_t i = 0; i < count; ++i) {
    if (isSet && i < all.size()) read(i, all, i);
    if (const Values* own = entryOf(layout, attribute, static_cast<int>(i) + 1))
      read(i, *own, first);
  }
}

struct Row {
  std::vector<int> widths;
  std::vector<Hold> across, down;
  std::size_t adjustable = 0;  ///< from 1; 0: none
};

Row rowOf(const LayoutSolver& solver, const LayoutItem& layout) {
  const Control& control = *layout.control;
  const std::size_t count = layout.children.size();
  Row row{std::vector<int>(count), std::vector<Hold>(count), std::vector<Hold>(count), 0};
  for (std::size_t i = 0; i < count; ++i) {
    row.widths[i] = solver.child(layout, i).natural.width;
    row.down[i].align = "center";
  }
  readColumns(control, "columnAttach", count, 1,
              [&](std::size_t i, const Values& v, std::size_t at) {
                row.across[i].attach = asText(v, at);
                if (v.size() > at + 1 && at == 1) row.across[i].offset = asInt(v, at + 1);
              });
  readColumns(
      control, "columnOffset", count, 1,
      [&](std::size_t i, const Values& v, std::size_t at) { row.across[i].offset = asInt(v, at); });
  readColumns(
      control, "columnAlign", count, 1,
      [&](std::size_t i, const Values& v, std::size_t at) { row.across[i].align = asText(v, at); });
  for (std::size_t i = 0; i < count; ++i) {
    const int sides = row.across[i].attach == "both" ? 2 : row.across[i].attach == "none" ? 0 : 1;
    row.widths[i] += sides * row.across[i].offset;
    if (const Values* attach = entryOf(control, "rowAttach", static_cast<int>(i) + 1))
      row.down[i] = {asText(*attach, 1), "center", asInt(*attach, 2)};
  }
  readColumns(control, "columnWidth", count, 1,
              [&](std::size_t i, const Values& v, std::size_t at) {
                if (asInt(v, at) > 0) row.widths[i] = asInt(v, at);
              });
  row.adjustable = static_cast<std::size_t>(std::max(asInt(control.value("adjustableColumn")), 0));
  for (std::size_t i = 1; i <= 6; ++i)
    // The number says which column; without one it is the last of those that the flag counts.
    if (const auto own = control.values.find("adjustableColumn" + std::to_string(i));
        own != control.values.end())
      row.adjustable = std::clamp<std::size_t>(static_cast<std::size_t>(asInt(own->second)), 1, i);
  return row;
}

Size rowSize(const LayoutSolver& solver, const LayoutItem& layout) {
  Size size;
  const Row row = rowOf(solver, layout);
  for (std::size_t i = 0; i < row.widths.size(); ++i) {
    size.width += row.widths[i];
    const int offset = row.down[i].attach == "both" ? 2 * row.down[i].offset : row.down[i].offset;
    size.height = std::max(size.height, solver.child(layout, i).natural.height + offset);
  }
  return size;
}

void placeRow(LayoutSolver& solver, LayoutItem& layout) {
  Row row = rowOf(solver, layout);
  int used = 0;
  for (const int width : row.widths) used += width;
  if (row.adjustable >= 1 && row.adjustable <= row.widths.size()) {
    int& width = row.widths[row.adjustable - 1];
    width = std::max(width + layout.rect.width - used, 0);
    if (row.across[row.adjustable - 1].attach == "none")
      row.across[row.adjustable - 1].attach = "both";
  }
  int left = layout.rect.left;
  for (std::size_t i = 0; i < row.widths.size(); ++i) {
    LayoutItem& child = solver.child(layout, i);
    const auto [x, width] = heldIn(row.across[i], left, row.widths[i], child.natural.width);
    const auto [y, height] =
        heldIn(row.down[i], layout.rect.top, layout.rect.height, child.natural.height);
    child.rect = {x, y, width, height};
    left += row.widths[i];
  }
}

// rowColumnLayout
// -----------------------------------------------------------------------------------------------

/// The columns and rows of a table: where each begins and how long it is.
struct Table {
  std::size_t columns = 1, rows = 1;
  bool goesDown = false;  ///< fills columns first: the number of rows is given
  std::vector<int> widths, heights, before, above;  ///< before, above: spacing

  [[nodiscard]] std::size_t column(std::size_t child) const {
    return goesDown ? child / rows : child % columns;
  }
  [[nodiscard]] std::size_t row(std::size_t child) const {
    return goesDown ? child % rows : child / columns;
  }
};

Table tableOf(const LayoutSolver& solver, const LayoutItem& layout) {
  const Control& control = *layout.control;
  const std::size_t count = layout.children.size();
  Table table;
  const int columns = asInt(control.value("numberOfColumns"));
  const int rows = asInt(control.value("numberOfRows"));
  table.goesDown = columns <= 0 && rows > 0;
  if (table.goesDown) {
    table.rows = static_cast<std::size_t>(rows);
    table.columns = std::max<std::size_t>((count + table.rows - 1) / table.rows, 1);
  } else {
    table.columns = static_cast<std::size_t>(std::max(columns, 1));
    table.rows = std::max<std::size_t>((count + table.columns - 1) / table.columns, 1);
  }
  table.widths.resize(table.columns);
  table.heights.resize(table.rows);
  table.before.resize(table.columns);
  table.above.resize(table.rows);
  for (std::size_t i = 0; i < count; ++i) {
    const Size natural = solver.child(layout, i).natural;
    int& width = table.widths[table.column(i)];
    int& height = table.heights[table.row(i)];
    width = std::max(width, natural.width);
    height = std::max(height, natural.height);
  }
  const auto give = [&](std::vector<int>& target, std::string_view attribute) {
    const auto found = control.entries.find(attribute);
    if (found == control.entries.end()) return;
    for (const Values& entry : found->second)
      if (const int at = asInt(entry); at >= 1 && static_cast<std::size_t>(at) <= target.size())
        target[static_cast<std::size_t>(at) - 1] = asInt(entry, 1);
  };
  give(table.widths, "columnWidth");
  give(table.heights, "rowHeight");
  give(table.before, "columnSpacing");
  give(table.above, "rowSpacing");
  return table;
}

int sum(const std::vector<int>& numbers) {
  int total = 0;
  for (const int each : numbers) total += each;
  return total;
}

Size tableSize(const LayoutSolver& solver, const LayoutItem& layout) {
  const Table table = tableOf(solver, layout);
  return {sum(table.widths) + sum(table.before), sum(table.heights) + sum(table.above)};
}

void placeTable(LayoutSolver& solver, LayoutItem& layout) {
  const Control& control = *layout.control;
  Table table = tableOf(solver, layout);
  const int adjustable = asInt(control.value("adjustableColumn"));
  if (adjustable >= 1 && static_cast<std::size_t>(adjustable) <= table.columns) {
    int& width = table.widths[static_cast<std::size_t>(adjustable) - 1];
    width = std::max(width + layout.rect.width - sum(table.widths) - sum(table.before), 0);
  }
  const auto starts = [](const std::vector<int>& lengths, const std::vector<int>& gaps, int from) {
    std::vector<int> at(lengths.size());
    for (std::size_t i = 0; i < lengths.size(); ++i) {
      from += gaps[i];
      at[i] = from;
      from += lengths[i];
    }
    return at;
  };
  const std::vector<int> lefts = starts(table.widths, table.before, layout.rect.left);
  const std::vector<int> tops = starts(table.heights, table.above, layout.rect.top);
  for (std::size_t i = 0; i < layout.children.size(); ++i) {
    const std::size_t column = table.column(i), row = table.row(i);
    if (column >= table.columns) continue;
    Hold across{"both", "left", 0};  // children fill their column unless told otherwise
    const int key = static_cast<int>(column) + 1;
    if (const Values* attach = entryOf(control, "columnAttach", key)) {
      across.attach = asText(*attach, 1);
      across.offset = asInt(*attach, 2);
    }
    if (const Values* align = entryOf(control, "columnAlign", key))
      across.align = asText(*align, 1);
    LayoutItem& child = solver.child(layout, i);
    const auto [x, width] =
        heldIn(across, lefts[column], table.widths[column], child.natural.width);
    Hold down{"none", "center", 0};
    if (const Values* attach = entryOf(control, "rowAttach", static_cast<int>(row) + 1))
      down = {asText(*attach, 1), "center", asInt(*attach, 2)};
    const auto [y, height] = heldIn(down, tops[row], table.heights[row], child.natural.height);
    child.rect = {x, y, width, height};
  }
}

// gridLayout, shelfLayout
// -----------------------------------------------------------------------------------------------

Size cellOf(const Control& layout) {
  const auto given = [&](std::string_view attribute, std::size_t at) {
    const auto found = layout.values.find(attribute);
    return found == layout.values.end() ? 0 : asInt(found->second, at);
  };
  Size cell{asInt(layout.value("cellWidthHeight"), 0), asInt(layout.value("cellWidthHeight"), 1)};
  if (const int width = given("cellWidth", 0); width > 0) cell.width = width;
  if (const int height = given("cellHeight", 0); height > 0) cell.height = height;
  return {std::max(cell.width, 1), std::max(cell.height, 1)};
}

std::size_t countOf(const Control& layout, std::string_view own, std::size_t at) {
  int count = asInt(layout.value("numberOfRowsColumns"), at);
  if (const auto found = layout.values.find(own); found != layout.values.end())
    count = asInt(found->second);
  return static_cast<std::size_t>(std::max(count, 1));
}

Size gridSize(const LayoutSolver&, const LayoutItem& layout) {
  const Size cell = cellOf(*layout.control);
  const std::size_t columns = countOf(*layout.control, "numberOfColumns", 1);
  std::size_t rows = countOf(*layout.control, "numberOfRows", 0);
  if (layout.control->isOn("autoGrow"))
    rows = std::max(rows, (layout.children.size() + columns - 1) / columns);
  return {cell.width * static_cast<int>(columns), cell.height * static_cast<int>(rows)};
}

/// Where the children stand in a grid, from 0: as told, the others in the cells that are left.
std::vector<std::size_t> cellsOf(const LayoutSolver& solver, const LayoutItem& layout) {
  const std::size_t count = layout.children.size();
  std::unordered_map<std::string, std::size_t> told;
  if (const auto found = layout.control->entries.find("position");
      found != layout.control->entries.end())
    for (const Values& entry : found->second)
      if (asInt(entry, 1) >= 1) told[asText(entry)] = static_cast<std::size_t>(asInt(entry, 1)) - 1;
  std::vector<std::size_t> cells(count);
  std::unordered_map<std::size_t, bool> taken;
  constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
  for (std::size_t i = 0; i < count; ++i) {
    const auto own = told.find(solver.child(layout, i).control->name);
    cells[i] =
        own != told.end() && taken.emplace(own->second, true).second ? own->second : kNowhere;
  }
  std::size_t next = 0;
  for (std::size_t& cell : cells) {
    if (cell != kNowhere) continue;
    while (taken.contains(next)) ++next;
    cell = next++;
  }
  return cells;
}

void placeCells(LayoutSolver& solver, LayoutItem& layout, std::size_t columns, Size cell) {
  const std::vector<std::size_t> cells = cellsOf(solver, layout);
  for (std::size_t i = 0; i < cells.size(); ++i)
    solver.child(layout, i).rect = {
        layout.rect.left + static_cast<int>(cells[i] % columns) * cell.width,
        layout.rect.top + static_cast<int>(cells[i] / columns) * cell.height, cell.width,
        cell.height};
}

void placeGrid(LayoutSolver& solver, LayoutItem& layout) {
  Size cell = cellOf(*layout.control);
  std::size_t columns = countOf(*layout.control, "numberOfColumns", 1);
  if (layout.control->isOn("columnsResizable"))
    columns = static_cast<std::size_t>(std::max(layout.rect.width / cell.width, 1));
  placeCells(solver, layout, columns, cell);
}

Size shelfSize(const LayoutSolver&, const LayoutItem& layout) {
  const Size cell = cellOf(*layout.control);
  return {cell.width * static_cast<int>(std::max<std::size_t>(layout.children.size(), 1)),
          cell.height};
}

void placeShelf(LayoutSolver& solver, LayoutItem& layout) {
  const Size cell = cellOf(*layout.control);
  const int columns = std::max(layout.rect.width / cell.width, 1);
  placeCells(solver, layout, static_cast<std::size_t>(columns), cell);
}

constexpr LayoutRule kRules[] = {
    {"columnLayout", columnSize, placeColumn},  {"rowLayout", rowSize, placeRow},
    {"rowColumnLayout", tableSize, placeTable}, {"gridLayout", gridSize, placeGrid},
    {"shelfLayout", shelfSize, placeShelf},
};

}  // namespace

std::span<const LayoutRule> rowRules() {
  return kRules;
}

}  // namespace host::ui
