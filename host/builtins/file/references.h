#pragma once

#include "host/builtins/common/command.h"
#include "host/io/ma/ma_references.h"

namespace host::builtins {

/// A file to be referenced.
struct ReferenceRequest {
  std::string written;            ///< as a person or a scene names it
  std::string nameSpace, prefix;  ///< of the two one
  std::string node;               ///< what the reference node is called; empty: after the namespace
  std::string options, type;
  std::vector<std::string> shared = {};  ///< kinds of nodes: "displayLayers", ...; kept
  bool isDeferred = false;               ///< the node alone
  bool sharesNamespace = false;          ///< also with nodes that are in it already
};

/// Makes a reference. Without a file that can be read the node alone is made, and a warning says
/// why; `parent` is the reference node of the file that has this one, null for the scene.
Result<dg::Node*> makeReference(Context& context, const ReferenceRequest& request,
                                dg::Node* parent);
/// Reads the file of a reference that is not loaded, again if it is, with the scene's edits.
/// @return an error when the file cannot be read; the reference is then as it was
Result<void> loadReference(Context& context, dg::Node& reference, const std::string& newFile = {});
/// Lets its nodes go and keeps the edits.
Result<void> unloadReference(Context& context, dg::Node& reference);
/// Lets the nodes go, and the reference with its edits.
Result<void> removeReference(Context& context, dg::Node& reference);
/// Makes its nodes the scene's own.
Result<void> importReference(Context& context, dg::Node& reference);
/// Forgets the edits that could not be made, or of a reference that is not loaded all.
Result<void> cleanReference(dg::Node& reference, int kind);

/// What a scene file asks for while it is read: as the scene or, within `loadReference`, for that
/// reference. `path` is the file.
[[nodiscard]] io::MaReferenceKeeper referenceKeeper(Context& context, const std::string& path);
void forgetSceneBeingRead(Context& context);
/// Whether a file is being read for a reference.
[[nodiscard]] bool isReadingReference(Context& context);
/// Which references are loaded with what is read: "all", "topOnly", "none"; empty: as files say.
void setReferenceDepth(Context& context, std::string depth);

/// The reference that a node name, a file or a referenced node means.
[[nodiscard]] Result<dg::Node*> findReference(Context& context, const std::string& name);
/// The file as it is listed: a second reference of it gets "{1}", a third one "{2}".
[[nodiscard]] std::string numberedFile(const scene::Document& document, const dg::Node& reference,
                                       bool withNumber = true, bool asWritten = false);

}  // namespace host::builtins
