#include "shared/settings/toolMessages.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

#include <map>
#include <string>

namespace {

std::map<std::string, toolMessageHandler>& handlers() {
  static std::map<std::string, toolMessageHandler> all;
  return all;
}

}  // namespace

void setToolMessageHandler(const char* message, toolMessageHandler handler) {
  if (handler)
    handlers()[message] = handler;
  else
    handlers().erase(message);
}

MStatus runToolMessage(const MString& message) {
  const auto found = handlers().find(message.asChar());
  if (found != handlers().end()) return found->second();
  MGlobal::displayError(MString("The tool for \"") + message + "\" is not available.");
  return MS::kFailure;
}
