#include "host/app/options.h"

#include <CLI/CLI.hpp>

namespace host::app {

int parseOptions(int argc, char** argv, Options& options) {
  CLI::App app{"Polygon modelling and UV toolkit on its embedded host.", "qxmt"};
  app.footer(
      "Without a script, on a terminal: a prompt. `qxmt tour [FOLDER]` shows the toolkit on a real "
      "mesh, `qxmt tour quad [FOLDER]` its quad draw.\n"
      "A script named `-` is standard input; behind `--` every word is a file or an argument.\n"
      "`qxmt unwrap IN.obj -o OUT.obj` gives meshes UVs; `qxmt unwrap --help` says more.\n"
      "`qxmt replay FILE` does a recorded gesture again; `qxmt replay --help` says more.\n"
      "`qxmt reference` prints the tables of the modelling commands, `qxmt reference commands` "
      "those of\n"
      "all.\n"
      "Exit status: 0 done; 1 a script or command failed; 2 bad usage; 3 a file could not be read "
      "or written.");
  app.prefix_command();  // the words after the script's name are the script's
  app.add_option("-c,--command", options.commands,
                 "run a MEL command line and show its result (repeatable)")
      ->type_name("MEL")
      ->take_all()
      ->allow_extra_args(false);
  app.add_flag("-i,--interactive", options.interactive, "prompt with history and completion");
  app.add_flag("-w,--window", options.window, "open the window");
  app.add_option("-o,--open", options.openFile, "open a scene or import a mesh first (.ma, .obj)")
      ->type_name("FILE");
  app.add_option("--plug-in", options.plugIns, "load a further plug-in (repeatable)")
      ->type_name("FILE")
      ->take_all()
      ->allow_extra_args(false);
  app.add_flag("--no-module", options.noModule, "do not load the toolkit");
  app.set_version_flag("--version", "qxmt 0.1.0");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUsage;
  }
  std::vector<std::string> words = app.remaining();
  // What stands behind "--" is a script's name, whatever it looks like.
  const bool isPlain = !words.empty() && words.front() == "--";
  if (isPlain) words.erase(words.begin());
  if (!isPlain && !words.empty() && words.front().size() > 1 && words.front().front() == '-') {
    std::fprintf(stderr, "qxmt: unknown option %s\nRun qxmt --help for the options.\n",
                 words.front().c_str());
    return kBadUsage;
  }
  if (!words.empty()) {
    options.script = words.front();
    options.isScriptPlain = isPlain;
    options.arguments.assign(words.begin() + 1, words.end());
  }
  return -1;
}

}  // namespace host::app
