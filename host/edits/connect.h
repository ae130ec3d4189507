#pragma once

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::edits {

/// Connects two plugs so that the number that scripts read on one side is the number they read on
/// the other: between an angle and a plain number, say, a unitConversion node does the arithmetic.
/// @return as `Graph::connect`, with the document as it was after an error
Result<void> connect(scene::Document& document, const dg::Plug& source, const dg::Plug& destination,
                     bool force = false);

}  // namespace host::edits
