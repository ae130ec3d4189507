#include "host/builtins/file/time_range.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "host/workspace/playback.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// The number behind a flag of a script.
std::optional<double> numberAfter(const std::string& script, const std::string& flag) {
  const std::size_t found = script.find(flag + " ");
  if (found == std::string::npos) return std::nullopt;
  const char* first = script.data() + found + flag.size() + 1;
  double number = 0;
  const auto [end, error] = std::from_chars(first, script.data() + script.size(), number);
  if (error != std::errc() || end == first) return std::nullopt;
  return number;
}

struct Range {
  double minimum, maximum, start, end;
};

std::optional<Range> rangeOf(const std::vector<dg::Node*>& imported) {
  for (dg::Node* node : imported) {
    if (node->type().name != "script") continue;
    const dg::Value value = node->graph().stored(node->plug("before"));
    const auto* script = std::get_if<std::string>(&value);
    if (!script || script->find("playbackOptions") == std::string::npos) continue;
    const auto minimum = numberAfter(*script, "-min"), maximum = numberAfter(*script, "-max");
    if (!minimum || !maximum || *maximum < *minimum) continue;
    const double start = numberAfter(*script, "-ast").value_or(*minimum),
                 end = numberAfter(*script, "-aet").value_or(*maximum);
    return Range{*minimum, *maximum, std::min(start, *minimum), std::max(end, *maximum)};
  }
  return std::nullopt;
}

}  // namespace

Result<void> importTimeRange(Context& context, const std::vector<dg::Node*>& imported,
                             const std::string& word) {
  if (word != "keep" && word != "override" && word != "combine")
    return fail("file: -importTimeRange is keep, override or combine, not '{}'.", word);
  const auto range = rangeOf(imported);
  if (!range || word == "keep") return {};
  auto& playback = workspace::workspaceOf(context.session).kept<workspace::Playback>();
  const double rate = context.document.units().framesPerSecond();
  const bool adds = word == "combine";
  const auto lower = [&](double& now, double frame) {
    now = adds ? std::min(now, frame / rate) : frame / rate;
  };
  const auto upper = [&](double& now, double frame) {
    now = adds ? std::max(now, frame / rate) : frame / rate;
  };
  lower(playback.minimum, range->minimum);
  lower(playback.start, range->start);
  upper(playback.maximum, range->maximum);
  upper(playback.end, range->end);
  return {};
}

}  // namespace host::builtins
