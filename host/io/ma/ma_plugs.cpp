#include "host/io/ma/ma_plugs.h"

#include <algorithm>
#include <charconv>

namespace host::io {
namespace {

/// Elements an index may stand for; rows of a file cannot reach further.
constexpr Index kLargestIndex = 0x7ffffffe;

struct Step {
  std::string_view name;
  Index first = kNone, last = kNone;
};

/// Takes "name[3]" or "name[1:4]" off the front; false when it is neither.
bool takeStep(std::string_view& rest, Step& step) {
  const std::size_t nameEnd = std::min(rest.find_first_of(".["), rest.size());
  step = {rest.substr(0, nameEnd), kNone, kNone};
  rest.remove_prefix(nameEnd);
  if (step.name.empty()) return false;
  if (rest.starts_with('[')) {
    const std::size_t close = rest.find(']');
    if (close == std::string_view::npos) return false;
    const char* p = rest.data() + 1;
    const char* end = rest.data() + close;
    auto read = std::from_chars(p, end, step.first);
    step.last = step.first;
    if (read.ec == std::errc{} && read.ptr < end && *read.ptr == ':')
      read = std::from_chars(read.ptr + 1, end, step.last);
    if (read.ec != std::errc{} || read.ptr != end || step.first < 0 || step.last < step.first ||
        step.last > kLargestIndex)
      return false;
    rest.remove_prefix(close + 1);
  }
  if (rest.empty()) return true;
  if (!rest.starts_with('.')) return false;
  rest.remove_prefix(1);
  return !rest.empty();
}

const dg::Attribute* below(const dg::Attribute& attribute, std::string_view name) {
  for (const dg::AttributePtr& child : attribute.children)
    if (child->isNamed(name)) return child.get();
  for (const dg::AttributePtr& child : attribute.children)
    if (const dg::Attribute* found = child->find(name)) return found;
  return nullptr;
}

bool isInstanced(const dg::Attribute& attribute) {
  return attribute.worldSpace || attribute.longName == "instObjGroups";
}

dg::Plug elementFor(const dg::Plug& array, Index instance) {
  return array.element(isInstanced(*array.attribute()) ? instance : 0);
}

/// The plug of `target`, somewhere below `plug`.
dg::Plug descend(const dg::Plug& plug, const dg::Attribute* target, Index instance) {
  if (target == plug.attribute()) return plug;
  dg::Plug above = descend(plug, target->parent, instance);
  if (above.isArray()) above = elementFor(above, instance);
  return above.child(target);
}

/// A nested attribute named without those above it.
dg::Plug startAt(dg::Node& node, const dg::Attribute* attribute, Index instance) {
  const dg::Attribute& top = attribute->top();
  return descend(node.plug(&top), attribute, instance);
}

}  // namespace

MaPlug findPlug(dg::Node& node, std::string_view path, Index instance) {
  std::string_view rest = path;
  MaPlug result;
  while (!rest.empty()) {
    Step step;
    if (!takeStep(rest, step)) return {};
    if (result.plug.isNull()) {
      const dg::Attribute* attribute = node.findAttribute(step.name);
      result.plug =
          attribute ? startAt(node, attribute, instance) : node.graph().findAlias(node, step.name);
    } else {
      if (result.plug.isArray()) result.plug = elementFor(result.plug, instance);
      const dg::Attribute* child = below(*result.plug.attribute(), step.name);
      if (!child) return {};
      result.plug = descend(result.plug, child, instance);
    }
    if (result.plug.isNull()) return {};
    if (step.first == kNone) continue;
    if (!result.plug.isArray()) return {};
    if (rest.empty()) {
      result.first = step.first;
      result.last = step.last;
      return result;
    }
    if (step.first != step.last) return {};
    result.plug = result.plug.element(step.first);
  }
  return result;
}

dg::Plug findEnd(dg::Node& node, std::string_view path, Index instance) {
  const MaPlug found = findPlug(node, path, instance);
  if (found.plug.isNull()) return {};
  if (found.first != kNone)
    return found.first == found.last ? found.plug.element(found.first) : dg::Plug();
  if (found.plug.isArray() && isInstanced(*found.plug.attribute()))
    return found.plug.element(instance);
  return found.plug;
}

}  // namespace host::io
