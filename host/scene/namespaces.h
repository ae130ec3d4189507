#pragma once

#include <string>
#include <string_view>

#include "host/scene/document.h"

namespace host::scene {

/// The namespace that new names go into, from the root, without the colon in front; empty: the
/// root.
[[nodiscard]] const std::string& currentNamespace(const Document& document);
/// Unrecorded: like a working folder it is no part of the scene.
void setCurrentNamespace(const Document& document, std::string name);

/// A name for a new node: one without a namespace goes into the current one, ":name" into the root.
[[nodiscard]] std::string inCurrentNamespace(const Document& document, std::string_view name);

/// Goes to another namespace while it lives.
class NamespaceScope {
 public:
  NamespaceScope(const Document& document, std::string name)
      : document_(document), before_(currentNamespace(document)) {
    setCurrentNamespace(document, std::move(name));
  }
  ~NamespaceScope() { setCurrentNamespace(document_, before_); }
  NamespaceScope(const NamespaceScope&) = delete;
  NamespaceScope& operator=(const NamespaceScope&) = delete;

 private:
  const Document& document_;
  std::string before_;
};

}  // namespace host::scene
