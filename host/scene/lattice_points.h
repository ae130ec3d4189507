#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/dg/node.h"
#include "host/scene/component.h"

namespace host::scene {

// The points of a lattice stand in lists as vertices by number: s fastest, then t, then u. Names
// have the three: "pt[0][4][1]".

/// How many points a lattice shape has along s, t and u; nothing for other nodes.
[[nodiscard]] std::optional<std::array<Index, 3>> latticeDivisions(dg::Node& shape);

/// Whether a word names points of a lattice: "pt", or "pt[".
[[nodiscard]] bool isLatticeWord(std::string_view word);
/// The points that "pt[0:1][*][2]" names, in brackets as far as they go; what lies past the lattice
/// is left out. @return an error that names the word
[[nodiscard]] Result<Component> parseLatticePoints(std::string_view word,
                                                   const std::array<Index, 3>& divisions);
/// The other way: one word for a box of points, else runs along s.
[[nodiscard]] std::vector<std::string> latticeWords(const Component& points,
                                                    const std::array<Index, 3>& divisions);

/// A word for each of the points of a lattice; nothing for components of other shapes.
[[nodiscard]] std::vector<std::string> flatLatticeWords(dg::Node& shape,
                                                        const Component& component);
/// The words of a component of a shape, as its kind names it.
[[nodiscard]] std::vector<std::string> componentWords(dg::Node& shape, const Component& component);

}  // namespace host::scene
