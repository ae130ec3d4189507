#include "host/dg/plug.h"

#include "host/dg/data.h"
#include "host/dg/node.h"

namespace host::dg {

Plug::Plug(Node* node, const Attribute* attribute)
    : node_(attribute ? node : nullptr),
      attribute_(attribute),
      levels_(attribute ? attribute->arrayLevels() : 0) {
  HOST_ASSERT(levels_ <= kMaxLevels, "nest fewer arrays, or raise Plug::kMaxLevels");
}

bool Plug::isComplete() const {
  const int needed = levels_ - (attribute_->isArray ? 1 : 0);
  for (int level = 0; level < needed; ++level)
    if (index(level) == kNone) return false;
  return true;
}

Plug Plug::element(Index logicalIndex) const {
  HOST_ASSERT(attribute_->isArray, "ask isArray() before taking an element");
  return withIndex(levels_ - 1, logicalIndex);
}

Plug Plug::array() const {
  HOST_ASSERT(attribute_->isArray, "ask isElement() before taking the array");
  return withIndex(levels_ - 1, kNone);
}

Plug Plug::child(int childIndex) const {
  return child(attribute_->children[static_cast<std::size_t>(childIndex)].get());
}

Plug Plug::child(const Attribute* attribute) const {
  HOST_ASSERT(attribute->parent == attribute_, "the attribute is not a child of this plug's");
  Plug result = *this;
  result.attribute_ = attribute;
  result.levels_ += attribute->isArray ? 1 : 0;
  HOST_ASSERT(result.levels_ <= kMaxLevels, "nest fewer arrays, or raise Plug::kMaxLevels");
  return result;
}

Plug Plug::parent() const {
  if (!attribute_->parent) return {};
  Plug result = *this;
  if (attribute_->isArray) result.indices_[static_cast<std::size_t>(--result.levels_)] = kNone;
  result.attribute_ = attribute_->parent;
  return result;
}

Plug Plug::withIndex(int level, Index logicalIndex) const {
  HOST_ASSERT(level >= 0 && level < levels_, "the plug has fewer array levels");
  Plug result = *this;
  result.indices_[static_cast<std::size_t>(level)] = logicalIndex;
  return result;
}

std::string Plug::attributePath(bool shortNames) const {
  if (isNull()) return {};
  const Plug above = parent();
  std::string path = above ? above.attributePath(shortNames) + '.' : std::string();
  path += shortNames ? attribute_->shortName : attribute_->longName;
  if (isElement()) path += '[' + std::to_string(logicalIndex()) + ']';
  return path;
}

std::string Plug::name() const {
  return isNull() ? std::string() : node_->name() + '.' + attributePath();
}

std::size_t PlugHash::operator()(const Plug& plug) const {
  std::uint64_t result = reinterpret_cast<std::uintptr_t>(plug.node());
  result = result * 0x9E3779B97F4A7C15ull + reinterpret_cast<std::uintptr_t>(plug.attribute());
  for (int level = 0; level < plug.levels(); ++level)
    result = result * 0x9E3779B97F4A7C15ull + static_cast<std::uint32_t>(plug.index(level));
  return static_cast<std::size_t>(result ^ (result >> 29));
}

}  // namespace host::dg
