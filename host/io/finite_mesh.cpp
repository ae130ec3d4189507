#include "host/io/finite_mesh.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace host::io {
namespace {

template <class Element>
std::span<const float> floatsOf(std::span<const Element> elements) {
  if (elements.empty()) return {};
  return {reinterpret_cast<const float*>(elements.data()),
          elements.size() * sizeof(Element) / sizeof(float)};
}

template <class Elements>
std::size_t badIn(const Elements& elements) {
  const std::span all(elements);
  return static_cast<std::size_t>(
      std::ranges::count_if(floatsOf(std::span<const typename decltype(all)::value_type>(all)),
                            [](float number) { return !std::isfinite(number); }));
}

template <class Elements>
void mend(Elements&& elements) {
  const std::span all(elements);
  using Element = typename decltype(all)::value_type;
  for (const float& number : floatsOf(std::span<const Element>(all)))
    if (!std::isfinite(number)) const_cast<float&>(number) = 0.0F;
}

}  // namespace

std::size_t makeFinite(mesh::Mesh& mesh) {
  std::size_t count = 0;
  const auto check = [&](const auto& elements, const auto& edit) {
    const std::size_t bad = badIn(elements);
    if (bad > 0) mend(edit());
    count += bad;
  };
  check(mesh.points(), [&] { return mesh.editPoints(); });
  for (int s = 0; s < mesh.uvSetCount(); ++s)
    check(
        mesh.uvSet(s).points, [&]() -> auto& { return mesh.editUvSet(s).points; });
  for (int s = 0; s < mesh.colorSetCount(); ++s)
    check(
        mesh.colorSet(s).colors, [&]() -> auto& { return mesh.editColorSet(s).colors; });
  check(
      mesh.lockedNormals().normals, [&]() -> auto& { return mesh.editLockedNormals().normals; });
  check(
      mesh.creases().edges, [&]() -> auto& { return mesh.editCreases().edges; });
  check(
      mesh.creases().vertices, [&]() -> auto& { return mesh.editCreases().vertices; });
  return count;
}

}  // namespace host::io
