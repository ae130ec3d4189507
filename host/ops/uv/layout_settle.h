#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/ops/uv/layout_pack.h"

namespace host::ops::flat {

/// Lets packed shapes settle closer: they keep pushing and turning each other aside while the
/// ceiling comes down to a height of 1 and below, then while all of them grow. What a board of
/// cells rounds up to and the slack between neighbours become scale.
///
/// Contacts between outlines are resolved one by one, as of stiff bodies that keep most of their
/// speed (Müller et al. 2007, "Position based dynamics"), under a pressure that is held where the
/// contacts can just follow (Lubachevsky and Stillinger 1990 for growing discs). In the end shapes
/// shrink by the hair that lets all contacts be resolved, and the outcome is measured anew: any
/// two outlines are at least the gutter apart.
/// @param start a packing without overlap; its height may be above 1 where nothing is standing
/// @param effort bounds the work, in pairs of edges looked at; some 30 million take a second
/// @return nothing when contacts were left over, a shape has no outline, or the work was cancelled
[[nodiscard]] std::optional<Packing> settled(std::span<const PackShape> shapes,
                                             const PackOptions& options, const Packing& start,
                                             std::uint64_t effort);

}  // namespace host::ops::flat
