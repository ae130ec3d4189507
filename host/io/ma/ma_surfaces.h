#pragma once

#include <string>
#include <vector>

#include "host/io/ma/ma_file.h"
#include "host/scene/array_attrs_data.h"
#include "host/scene/surface_data.h"

namespace host::io {

/// A curved surface: degrees, forms and whether it is rational, the knots of both directions after
/// their counts, perhaps NOTRIM, the control points after theirs. Trimmed surfaces are refused.
[[nodiscard]] Result<dg::Value> surfaceFrom(const std::vector<MaToken>& tokens);
/// False when a number is not finite.
bool appendSurface(std::string& text, const math::NurbsSurface& surface);

/// Arrays by name. No file of another program with such a value was at hand: the form is the one
/// that the other array types suggest, a count and, for each, its name, kind, count and elements.
[[nodiscard]] Result<dg::Value> arrayAttrsFrom(const std::vector<MaToken>& tokens);
bool appendArrayAttrs(std::string& text, const scene::ArrayAttrsData& data);

}  // namespace host::io
