#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// A flag that sets an attribute of the node that makes a curve or surface, of the same name.
struct MakerFlag {
  const char *shortName, *longName;
  ArgType type;
  int count = 1;
};

/// Adds the flags to a syntax, those of triples also a part at a time (-cx -cy -cz).
void addMakerFlags(Syntax& syntax, std::span<const MakerFlag> flags, bool hasParts);
/// Sets what the arguments say.
Result<void> setMakerFlags(Context& context, const ParsedArgs& args, dg::Node& node,
                           std::span<const MakerFlag> flags);

/// A transform, selected, with a curve or surface shape that holds nothing yet.
Result<dg::Node*> makeCurvedShape(Context& context, const std::string& type,
                                  const std::string& name);

/// What a command about a maker node needs to know.
struct Maker {
  const char *command, *nodeType, *output, *shapeType, *defaultName;
  std::span<const MakerFlag> flags;
};
/// Makes the node with its shape, or edits or queries the maker of a named object.
CommandResult runMaker(Context& context, const ParsedArgs& args, const Maker& maker);

}  // namespace host::builtins
