#include "host/modelling/declare/corner_values.h"

namespace host::modelling {

double CornerValues::number(const Plug& leaf) {
  auto value = block_.input(leaf);
  if (!value) {
    if (!fault_) fault_ = value.error();
    return 0;
  }
  const auto* real = std::get_if<double>(&*value);
  const auto* integer = std::get_if<std::int64_t>(&*value);
  return real ? *real : integer ? static_cast<double>(*integer) : 0;
}

Result<void> CornerValues::fault() const {
  if (fault_) return failWith(*fault_);
  return {};
}

void dropUnusedColors(mesh::ColorSet& set) {
  std::vector<Index> newIds(set.colors.size(), kNone);
  for (const Index id : set.cornerIds)
    if (id != kNone) newIds[at(id)] = 0;
  std::vector<mesh::Color4f> kept;
  for (std::size_t i = 0; i < newIds.size(); ++i) {
    if (newIds[i] == kNone) continue;
    newIds[i] = static_cast<Index>(kept.size());
    kept.push_back(set.colors[i]);
  }
  set.colors = std::move(kept);
  for (Index& id : set.cornerIds)
    if (id != kNone) id = newIds[at(id)];
  if (set.colors.empty()) set.cornerIds.clear();
}

}  // namespace host::modelling
