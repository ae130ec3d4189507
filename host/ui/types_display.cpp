// Controls that only show something.
#include <algorithm>

#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

constexpr Attribute kText[] = {
    {"l", "label", "s"},
    {"al", "align", "s", "left"},
    {"fn", "font", "s", "plainLabelFont"},
    {"rs", "recomputeSize", "b", "1"},
    {"ww", "wordWrap", "b"},
    {"hl", "hyperlink", "b"},
    {"dc", "dropRectCallback", "c"},
};

constexpr Attribute kSeparator[] = {
    {"st", "style", "s", "in"},
    {"hr", "horizontal", "b", "1"},
};

constexpr Attribute kImage[] = {
    {"i", "image", "s"},
};

constexpr Attribute kPicture[] = {
    {"i", "image", "s"},
    {"tl", "tile", "b"},
};

Result<void> setProgress(Tree&, Control& bar, const Attribute&, const Values& values) {
  const int low = asInt(bar.value("minValue")), high = asInt(bar.value("maxValue"));
  bar.setValue("progress", {std::clamp(asInt(values), std::min(low, high), std::max(low, high))});
  return {};
}

Result<void> stepProgress(Tree& tree, Control& bar, const Attribute& attribute,
                          const Values& values) {
  return setProgress(tree, bar, attribute, {asInt(bar.value("progress")) + asInt(values)});
}

Result<void> beginProgress(Tree& tree, Control& bar, const Attribute& attribute, const Values&) {
  bar.setValue("isCancelled", {0});
  return setProgress(tree, bar, attribute, bar.value("minValue"));
}

constexpr Attribute kProgressBar[] = {
    {"min", "minValue", "i", "0"},
    {"max", "maxValue", "i", "100"},
    {"pr", "progress", "i", "0", kAll, kLate, setProgress},
    {"s", "step", "i", "1", kCreateEdit, kLate, stepProgress},
    {"st", "status", "s"},
    {"bp", "beginProgress", "", "", kCreateEdit, kLate, beginProgress},
    {"ep", "endProgress", "", "", kCreateEdit},
    {"ii", "isInterruptable", "b"},
    {"ic", "isCancelled", "", "0", kQuery},
    {"imp", "isMainProgressBar", "b"},
    {"hii", "hideIfInvisible", "b"},
};

}  // namespace

void addDisplayTypes(std::vector<ControlType>& types) {
  const auto add = [&](std::string_view name, std::vector<AttributeTable> own) {
    own.push_back(commonAttributes());
    types.push_back({name, Kind::Control, std::move(own)});
  };
  add("text", {kText});
  add("separator", {kSeparator});
  add("image", {kImage});
  add("picture", {kPicture});
  add("progressBar", {kProgressBar});
}

}  // namespace host::ui
