#pragma once

#include "host/api/core/access.h"

namespace host::api {

/// The description behind an attribute object; null, with the status saying so, for others.
[[nodiscard]] dg::Attribute* attributeIn(const MObject& object, MStatus* status = nullptr);

/// A new attribute's object, or none with the status set when its names can't be used.
[[nodiscard]] MObject makeAttributeObject(std::shared_ptr<dg::Attribute> attribute,
                                          MStatus* status);

}  // namespace host::api
