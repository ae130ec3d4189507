#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/builtins/common/command.h"
#include "host/math/box.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

/// What the commands that make deformers have in common: -name, -envelope, -geometry,
/// -geometryIndices, -remove, and where in the history: -before, -after, -frontOfChain, -parallel.
Syntax& addDeformerFlags(Syntax& syntax);

/// What a call of such a command is about.
struct DeformerObjects {
  std::vector<nodes::MeshItem> meshes;  ///< with the components named, in order
  std::vector<dg::Node*> deformers;     ///< named beside them
};
/// The objects named, else those selected.
[[nodiscard]] Result<DeformerObjects> deformerObjects(Context& context, const ParsedArgs& args);

/// The box around the points of all, in the world.
[[nodiscard]] math::Box worldBox(const std::vector<nodes::MeshItem>& items);

/// Where the flags want a deformer; `named` are the deformers among the objects, which -before and
/// -after are about when they name none.
[[nodiscard]] nodes::DeformerPlace deformerPlace(const ParsedArgs& args,
                                                 const std::vector<dg::Node*>& named);

/// Has a new deformer work on objects, where the flags want it, with the envelope that they say.
Result<void> addDeformed(scene::Document& document, dg::Node& deformer,
                         const DeformerObjects& objects, const ParsedArgs& args);

/// The deformer of a type (or one derived from it) that a name means: itself, or the last of that
/// type that deforms the shape named.
[[nodiscard]] Result<dg::Node*> deformerOfType(Context& context, const std::string& command,
                                               const std::string& type, const std::string& name);

[[nodiscard]] bool removes(const ParsedArgs& args);  ///< -remove, without "off" behind it
/// Carries out -geometry, with -remove, and -envelope on a deformer.
Result<void> editDeformer(Context& context, const ParsedArgs& args, dg::Node& deformer);
/// Answers -geometry, -geometryIndices, -envelope and -name; nothing for other flags.
[[nodiscard]] std::optional<CommandResult> queryDeformer(Context& context, const ParsedArgs& args,
                                                         dg::Node& deformer);

}  // namespace host::builtins
