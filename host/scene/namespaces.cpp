#include "host/scene/namespaces.h"

#include <unordered_map>

namespace host::scene {
namespace {

/// By document: a second one, as readers and writers make, has its own. Few are not in the root.
std::unordered_map<const Document*, std::string>& table() {
  static std::unordered_map<const Document*, std::string> names;
  return names;
}

}  // namespace

const std::string& currentNamespace(const Document& document) {
  static const std::string root;
  const auto found = table().find(&document);
  return found == table().end() ? root : found->second;
}

void setCurrentNamespace(const Document& document, std::string name) {
  if (name.empty())
    table().erase(&document);
  else
    table()[&document] = std::move(name);
}

std::string inCurrentNamespace(const Document& document, std::string_view name) {
  const bool isAbsolute = name.starts_with(':');
  while (name.starts_with(':')) name.remove_prefix(1);
  const std::string& current = currentNamespace(document);
  if (isAbsolute || current.empty() || name.find(':') != std::string_view::npos)
    return std::string(name);
  return current + ":" + std::string(name);
}

}  // namespace host::scene
