#pragma once

#include <maya/MFn.h>

#include "host/dg/attribute.h"
#include "host/dg/node.h"
#include "host/scene/component.h"

namespace host::api {

/// "kMesh" for MFn::kMesh; "kInvalid" for numbers that are none.
[[nodiscard]] const char* fnTypeName(MFn::Type type);
/// The most derived kind that the API names for a node, by its type and those it derives from.
[[nodiscard]] MFn::Type fnTypeOf(const dg::Node& node);
[[nodiscard]] bool nodeHasFn(const dg::Node& node, MFn::Type type);
[[nodiscard]] MFn::Type fnTypeOf(const dg::Attribute& attribute);
[[nodiscard]] MFn::Type fnTypeOf(scene::ComponentType type);
[[nodiscard]] bool toComponentType(MFn::Type type, scene::ComponentType& result);
[[nodiscard]] MFn::Type fnTypeOf(const dg::Data& data);
[[nodiscard]] bool dataHasFn(const dg::Data* data, MFn::Type type);

}  // namespace host::api
