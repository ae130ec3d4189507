#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Each registers one type of node that makes a primitive; attributes are those of the command of
/// the same name.
void registerPolyCube(dg::TypeRegistry& types);
void registerPolyPlane(dg::TypeRegistry& types);
void registerPolySphere(dg::TypeRegistry& types);
void registerPolyCylinder(dg::TypeRegistry& types);
void registerPolyCone(dg::TypeRegistry& types);
void registerPolyTorus(dg::TypeRegistry& types);
void registerPolyPyramid(dg::TypeRegistry& types);

}  // namespace host::nodes
