#include "brushes/brushKeys.h"

#include <maya/MGlobal.h>

namespace {

MString bound(const char* letter, const char* flag) {
  MString name;
  MGlobal::executeCommand(MString("hotkey -k \"") + letter + "\" -q " + flag, name, false, false);
  return name;
}

void run(const MString& line) {
  MGlobal::executeCommand(line, false, false);
}

}  // namespace

MString brushKeys::nameOf(const key& one) const {
  return MString("qxBrush_") + one.what;
}

void brushKeys::bind() {
  if (isBound) return;
  isBound = true;
  for (key& one : keys) {
    const MString name = nameOf(one);
    const MString edit = MString(contextCommand) + " -e -adjust ";
    const auto define = [&](const MString& named, const char* what) {
      run("nameCommand -annotation \"drags set the brush's " + MString(one.what) +
          "\" -command \"" + edit + what + " `currentCtx`\" " + named);
    };
    define(name, one.what);
    define(name + "_end", "none");
    one.press = bound(one.letter, "-name");
    one.release = bound(one.letter, "-releaseName");
    give(one, name, name + "_end");
  }
}

void brushKeys::unbind() {
  if (!isBound) return;
  isBound = false;
  for (const key& one : keys)
    if (bound(one.letter, "-name") == nameOf(one)) give(one, one.press, one.release);
}

void brushKeys::give(const key& one, const MString& press, const MString& release) const {
  run(MString("hotkey -k \"") + one.letter + "\" -name \"" + press + "\" -releaseName \"" +
      release + "\"");
}
