#pragma once

#include <maya/MIntArray.h>

#include "host/base/ids.h"

namespace host::api {

/// Ids as the integer array that authors are given.
[[nodiscard]] inline MIntArray toArray(IdView ids) {
  return MIntArray(ids.data(), static_cast<unsigned int>(ids.size()));
}

/// An author's integers as ids of a kind; not checked. The array must outlive them.
template <AnyId Id>
[[nodiscard]] std::span<const Id> idsOf(const MIntArray& numbers) {
  return viewIds<Id>(std::span<const Index>(numbers.begin(), numbers.length()));
}

}  // namespace host::api
