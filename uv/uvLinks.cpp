#include "uv/uvLinks.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "uv/uvLink.h"

namespace uvLinks {
namespace {

std::vector<std::unique_ptr<uvLink>>& links() {
  static std::vector<std::unique_ptr<uvLink>> all;
  return all;
}

template <class Test>
uvLink* firstThat(Test test) {
  for (const auto& each : links())
    if (test(*each)) return each.get();
  return nullptr;
}

}  // namespace

/// For the callbacks of a link.
uvLink* find(int number);
uvLink* find(int number) {
  return firstThat([number](const uvLink& link) { return link.number() == number; });
}

int add(const ends& linked) {
  static int lastNumber = 0;
  auto link = std::make_unique<uvLink>(linked, ++lastNumber);
  if (!link->begin()) return 0;
  links().push_back(std::move(link));
  return lastNumber;
}

void drop(int number) {
  const auto isIt = [number](const auto& link) { return link->number() == number; };
  const auto at = std::find_if(links().begin(), links().end(), isIt);
  if (at == links().end()) return;
  const std::unique_ptr<uvLink> going = std::move(*at);  // out of the list before it goes
  links().erase(at);
}

void dropAll() {
  std::vector<std::unique_ptr<uvLink>> going;
  going.swap(links());
}

bool isLinked(const MObject& meshShape) {
  return firstThat([&](const uvLink& link) { return link.drives(meshShape); }) != nullptr;
}

MDagPath meshOf(const MObject& uvObjectShape) {
  const uvLink* link = firstThat([&](const uvLink& each) { return each.reads(uvObjectShape); });
  return link ? link->mesh() : MDagPath();
}

}  // namespace uvLinks
