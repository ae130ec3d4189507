// The node types of the declarations.
#include <unordered_set>

#include "host/base/assert.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

namespace {

void registerOne(dg::TypeRegistry& types, const Declaration& declaration,
                 const Declaration::NodeNames& names) {
  if (declaration.run) {
    const auto add = [&](auto builder) {
      for (const Parameter& parameter : declaration.parameters)
        if (!builder.has(parameter.attribute->longName))
          builder.parameter(parameter.attribute->clone());
      builder.operation(declaration.run);
    };
    if (declaration.isPrimitive())
      add(nodes::PrimitiveNodeBuilder(types, names.type, names.id, declaration.base));
    else
      add(nodes::HistoryNodeBuilder(types, names.type, names.id, declaration.base));
    return;
  }
  HOST_ASSERT(declaration.build, "a declared node has an operation or is built by hand");
  TypeBuilder builder(types, names.type, declaration.base, names.id);
  std::vector<const Attribute*> added;
  for (const Parameter& parameter : declaration.parameters)
    added.push_back(builder.add(parameter.attribute->clone()));
  declaration.build(builder, added);
  builder.finish();
}

}  // namespace

void registerTypes(dg::TypeRegistry& types) {
  const Declarations& all = declarations();
  std::unordered_set<const Declaration*> done;
  // A type comes after the one that it is based on, whatever their files are called.
  const std::function<void(const Declaration&)> visit = [&](const Declaration& declaration) {
    if (!done.insert(&declaration).second) return;
    if (const Declaration* base = all.ofNode(declaration.base)) visit(*base);
    for (const Declaration::NodeNames& names : declaration.nodeTypes)
      registerOne(types, declaration, names);
  };
  for (const Declaration& declaration : all.list()) visit(declaration);
}

}  // namespace host::modelling
