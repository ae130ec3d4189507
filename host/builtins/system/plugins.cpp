#include "host/builtins/common/command.h"
#include "host/cmd/loop.h"

namespace host::builtins {

namespace {

Result<cmd::PluginLoader*> loaderOf(Context& context) {
  if (!context.session.pluginLoader)
    return fail(ErrorKind::Unsupported, "This program can't load plug-ins.");
  return context.session.pluginLoader.get();
}

CommandResult loadPlugin(Context& context, const ParsedArgs& args) {
  auto loader = loaderOf(context);
  if (!loader) return failWith(std::move(loader.error()));
  std::vector<std::string> names;
  for (const std::string& file : args.objectNames()) {
    auto name = (*loader)->load(file);
    if (!name) {
      if (args.has("quiet")) continue;
      return failWith(std::move(name.error()));
    }
    if (args.has("addCallback"))
      context.session.loop().deferTask(
          [&session = context.session, plugIn = *name, procedure = args.text("addCallback")] {
            (void)session.call(procedure, std::vector{mel::Value(plugIn)});
          });
    names.push_back(std::move(*name));
  }
  return toValue(std::move(names));
}

CommandResult unloadPlugin(Context& context, const ParsedArgs& args) {
  auto loader = loaderOf(context);
  if (!loader) return failWith(std::move(loader.error()));
  std::vector<std::string> names;
  for (const std::string& name : args.objectNames()) {
    HOST_TRY((*loader)->unload(name, args.has("force")));
    names.push_back(name);
  }
  return toValue(std::move(names));
}

CommandResult queryPlugin(const cmd::PluginInfo& info, const ParsedArgs& args) {
  if (args.has("loaded")) return mel::Value(true);
  if (args.has("name")) return mel::Value(info.name);
  if (args.has("path")) return mel::Value(info.path);
  if (args.has("vendor")) return mel::Value(info.vendor);
  if (args.has("version")) return mel::Value(info.version);
  if (args.has("apiVersion")) return mel::Value(info.apiVersion);
  if (args.has("autoload")) return mel::Value(info.isAutoload);
  if (args.has("registered")) return mel::Value(true);
  if (args.has("command")) return toValue(info.commands);
  if (args.has("modelEditorCommand") || args.has("tool")) return toValue(info.contextCommands);
  if (args.has("dependNode")) return toValue(info.nodeTypes);
  if (args.has("data")) return toValue(info.dataTypes);
  return fail("pluginInfo: say what to query.");
}

CommandResult pluginInfo(Context& context, const ParsedArgs& args) {
  cmd::PluginLoader* loader = context.session.pluginLoader.get();
  if (args.isQuery() && args.has("listPlugins"))
    return toValue(loader ? loader->loaded() : std::vector<std::string>{});
  const std::string name = args.firstObject();
  const cmd::PluginInfo* info = loader ? loader->info(name) : nullptr;
  if (args.isQuery()) {
    if (info) return queryPlugin(*info, args);
    if (args.has("loaded") || args.has("registered") || args.has("autoload"))
      return mel::Value(false);
    return fail(ErrorKind::NotFound, "pluginInfo: the plug-in '{}' is not loaded.", name);
  }
  if (!info) return fail(ErrorKind::NotFound, "pluginInfo: the plug-in '{}' is not loaded.", name);
  if (args.has("autoload")) loader->setAutoload(name, args.boolean("autoload"));
  return mel::Value();
}

}  // namespace

void registerPlugins(CommandRegistry& registry) {
  defineQuery(registry, "loadPlugin",
              Syntax()
                  .flag("qt", "quiet")
                  .flag("n", "name", {ArgType::String})
                  .flag("a", "allPlugins")
                  .flag("ac", "addCallback", {ArgType::String})
                  .strings(1),
              loadPlugin);
  defineQuery(registry, "unloadPlugin", Syntax().flag("f", "force").strings(1), unloadPlugin);
  defineQuery(registry, "pluginInfo",
              Syntax()
                  .flag("l", "loaded")
                  .flag("n", "name")
                  .flag("p", "path")
                  .flag("vd", "vendor")
                  .flag("v", "version")
                  .flag("av", "apiVersion")
                  .flag("a", "autoload", {ArgType::Bool})
                  .flag("r", "registered")
                  .flag("ls", "listPlugins")
                  .flag("c", "command")
                  .flag("t", "tool")
                  .flag("mec", "modelEditorCommand")
                  .flag("dn", "dependNode")
                  .flag("d", "data")
                  .flag("sp", "savePluginPrefs")
                  .editable()
                  .queryable()
                  .strings(0, 1),
              pluginInfo);
}

}  // namespace host::builtins
