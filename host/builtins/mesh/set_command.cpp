#include "host/builtins/mesh/set_command.h"

#include <algorithm>

#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

using mesh::Mesh;

/// One run of the command on one mesh.
class SetEdit {
 public:
  SetEdit(const ParsedArgs& args, const NamedSets& sets, const SetWords& words)
      : args_(args), sets_(sets), words_(words) {}

  Result<void> apply(Mesh& mesh) {
    if (args_.has("create")) return create(mesh);
    if (args_.has("delete")) return withSet(mesh, [&](int set) { return sets_.remove(mesh, set); });
    if (args_.has("rename")) return withSet(mesh, [&](int set) { return rename(mesh, set); });
    if (args_.has("copy")) return withSet(mesh, [&](int set) { return copy(mesh, set); });
    if (!args_.has(words_.currentSet))
      return fail("{}: say what to do, as with -create.", words_.command);
    return withSet(mesh, [&](int set) -> Result<void> {
      sets_.setCurrent(mesh, set);
      names.push_back(sets_.name(mesh, set));
      return {};
    });
  }

  std::vector<std::string> names;

 private:
  template <class Edit>
  Result<void> withSet(const Mesh& mesh, Edit&& edit) {
    const std::string name = args_.text(words_.set);
    const int set = name.empty() ? sets_.current(mesh) : sets_.find(mesh, name);
    if (set >= 0) return edit(set);
    return name.empty() ? fail("{}: the mesh has no {}.", words_.command, words_.kind)
                        : fail("{}: there is no {} '{}'.", words_.command, words_.kind, name);
  }

  /// `wanted`, or with the first number that makes it a name of its own.
  std::string freeName(const Mesh& mesh, const std::string& wanted) const {
    std::string name = wanted;
    for (int number = 1; sets_.find(mesh, name) >= 0; ++number)
      name = wanted + std::to_string(number);
    return name;
  }

  Result<void> create(Mesh& mesh) {
    const std::string wanted = args_.text(words_.set);
    const std::string name =
        wanted.empty() ? freeName(mesh, std::string(words_.base)) : freeName(mesh, wanted);
    sets_.setCurrent(mesh, sets_.add(mesh, name));
    names.push_back(name);
    return {};
  }

  Result<void> rename(Mesh& mesh, int set) {
    const std::string name = args_.text(words_.newSet);
    if (name.empty()) return fail("{}: -rename needs -{}.", words_.command, words_.newSet);
    if (const int other = sets_.find(mesh, name); other >= 0 && other != set)
      return fail("{}: there is a {} '{}' already.", words_.command, words_.kind, name);
    sets_.rename(mesh, set, name);
    names.push_back(name);
    return {};
  }

  Result<void> copy(Mesh& mesh, int set) {
    const std::string wanted = args_.text(words_.newSet);
    int to = wanted.empty() ? -1 : sets_.find(mesh, wanted);
    if (to == set) return fail("{}: '{}' is the set to copy from.", words_.command, wanted);
    if (to < 0)
      to =
          sets_.add(mesh, wanted.empty() ? freeName(mesh, sets_.name(mesh, set) + "Copy") : wanted);
    sets_.copy(mesh, set, to);
    sets_.setCurrent(mesh, to);
    names.push_back(sets_.name(mesh, to));
    return {};
  }

  const ParsedArgs& args_;
  const NamedSets& sets_;
  const SetWords& words_;
};

CommandResult query(const ParsedArgs& args, const Mesh& mesh, const NamedSets& sets,
                    const SetWords& words) {
  std::vector<std::string> names;
  if (args.has(words.allSets)) {
    for (int set = 0; set < sets.count(mesh); ++set) names.push_back(sets.name(mesh, set));
  } else if (args.has(words.currentSet)) {
    if (sets.current(mesh) >= 0) names.push_back(sets.name(mesh, sets.current(mesh)));
  } else {
    return fail("{}: query -{} or -{}.", words.command, words.allSets, words.currentSet);
  }
  return toValue(std::move(names));
}

}  // namespace

CommandResult runSetCommand(Context& context, const ParsedArgs& args, const NamedSets& sets,
                            const SetWords& words) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("{}: name or select polygon objects.", words.command);
  if (args.isQuery()) return query(args, items->front().mesh, sets, words);
  SetEdit edit(args, sets, words);
  std::vector<const dg::Node*> done;
  for (const MeshItem& item : *items) {
    // Instances share one shape, which is edited once.
    if (std::find(done.begin(), done.end(), item.path.node()) != done.end()) continue;
    done.push_back(item.path.node());
    Mesh mesh = item.mesh;
    HOST_TRY(edit.apply(mesh));
    const auto isRecorded = sets.record(context.document, *item.path.node(), item.mesh, mesh);
    if (!isRecorded) return failWith(isRecorded.error());
    if (!*isRecorded) HOST_TRY(nodes::setEvaluatedMesh(*item.path.node(), std::move(mesh)));
  }
  return toValue(std::move(edit.names));
}

Syntax& addSetFlags(Syntax& syntax, const SetWords& words, const SetFlagNames& shortNames) {
  return syntax.flag("cr", "create")
      .flag("d", "delete")
      .flag("rn", "rename")
      .flag("cp", "copy")
      .flag(shortNames.set, std::string(words.set), {ArgType::String})
      .queryArgs(QueryArgs::Optional)
      .flag(shortNames.newSet, std::string(words.newSet), {ArgType::String})
      .flag(shortNames.allSets, std::string(words.allSets))
      .flag(shortNames.currentSet, std::string(words.currentSet));
}

}  // namespace host::builtins
