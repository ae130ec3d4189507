#include "host/edits/time.h"

namespace host::edits {

namespace {

Result<dg::Plug> timePlug(const scene::Document& document) {
  const auto& found = document.nodesNamed("time1");
  if (found.empty()) return fail(ErrorKind::NotFound, "The scene has no time node.");
  return found.front()->plug("outTime");
}

}  // namespace

Result<double> currentTime(scene::Document& document) {
  const auto plug = timePlug(document);
  if (!plug) return failWith(plug.error());
  const auto value = document.graph().get(*plug);
  if (!value) return failWith(value.error());
  const auto* seconds = std::get_if<double>(&*value);
  return seconds ? *seconds : 0.0;
}

Result<void> setCurrentTime(scene::Document& document, double seconds) {
  const auto plug = timePlug(document);
  if (!plug) return failWith(plug.error());
  return document.graph().set(*plug, dg::Value(seconds));
}

}  // namespace host::edits
