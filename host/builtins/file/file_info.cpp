#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/io/ma/ma_kept.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// Keywords and values that go with the scene into its file.
CommandResult fileInfo(Context& context, const ParsedArgs& args) {
  auto& all = context.document.fileInfo;
  const std::vector<std::string> words = args.objectNames();
  const auto same = [&](const auto& each) { return !words.empty() && each.first == words.front(); };
  if (args.isQuery()) {
    std::vector<std::string> texts;
    for (const auto& [keyword, value] : all) {
      if (words.empty()) texts.push_back(keyword);
      if (words.empty() || keyword == words.front()) texts.push_back(value);
    }
    return toValue(std::move(texts));
  }
  if (args.has("remove")) {
    if (std::erase_if(all, [&](const auto& each) { return same(each); }) == 0 && !words.empty())
      return fail("fileInfo: there is no keyword '{}'.", words.front());
    context.document.setModified(true);
    return mel::Value();
  }
  if (words.size() != 2) return fail("fileInfo: give a keyword and a value.");
  const auto found = std::find_if(all.begin(), all.end(), same);
  if (found == all.end())
    all.emplace_back(words[0], words[1]);
  else
    found->second = words[1];
  context.document.setModified(true);
  return mel::Value();
}

/// What a file said of nodes whose types are not there.
CommandResult unknownNode(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("unknownNode: name the node.");
  const io::MaKept::Node* kept =
      workspace::workspaceOf(context.session).maKept.find(*list->items().front().node);
  if (!kept || kept->type.empty())
    return fail("unknownNode: '{}' is not of an unknown type.", list->items().front().node->name());
  return mel::Value(kept->type);
}

}  // namespace

void registerFileInfo(CommandRegistry& registry) {
  define(registry, "fileInfo", Syntax().flag("rm", "remove").queryable().strings(0, 2), fileInfo);
  define(registry, "unknownNode",
         Syntax().flag("rcn", "realClassName").queryable().objects(0, 1, true), unknownNode);
}

}  // namespace host::builtins
