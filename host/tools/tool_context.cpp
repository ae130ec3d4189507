#include "host/tools/tool_context.h"

namespace host::tools {

ToolContext::~ToolContext() = default;
void ToolContext::setup(const InputEvent&) {}
void ToolContext::cleanup() {}
void ToolContext::press(const InputEvent&) {}
void ToolContext::drag(const InputEvent&) {}
void ToolContext::release(const InputEvent&) {}
void ToolContext::hold(const InputEvent&) {}
void ToolContext::moved(const InputEvent&) {}
void ToolContext::entered(const InputEvent&) {}
bool ToolContext::key(const InputEvent&) {
  return false;
}
void ToolContext::deleteAction() {}
void ToolContext::complete() {}
void ToolContext::abort() {}
void ToolContext::draw(const std::string&, viewport::DrawList&) {}
void ToolContext::mark(const std::string&, viewport::SceneView&) {}

std::vector<std::string> ToolContext::settings(const std::string&) {
  return {};
}

}  // namespace host::tools
