#!/usr/bin/env bash
# Holds running of script text, and looking commands up by name, to the places where the text or the name is a user's:
# a procedure of a user must never change what the host itself does. Prints each offence as file:line.
# usage: script_text.sh ROOT
set -euo pipefail
root=$1

# Who may, and whose text it is.
allowed='
host/api/global/execute.cpp        text that a plug-in gives to be run
host/api/graph/modifier.cpp        the same, queued in a modifier
host/app/completion.cpp            the flags of a command that a person types
host/app/main.cpp                  the command line and the script file
host/app/prompt.cpp                what a person types
host/app/replay.cpp                the command line of a replay
host/app/tour.cpp                  the tour is a script
host/builtins/anim/expression.cpp  a script node that somebody runs by name
host/builtins/anim/expression_node.cpp  the text of an expression
host/builtins/attr/attr_presets.cpp  a preset is a script file that a user names
host/builtins/file/script_nodes.cpp  scripts that a scene carries
host/builtins/mesh/perform_action.cpp  a command that a menu script names
host/builtins/system/about.cpp     tells what a command of that name takes
host/builtins/ui/control_values.cpp  callbacks of controls
host/builtins/ui/dialogs.cpp       the script that fills a dialog
host/builtins/ui/view_messages.cpp  the command of a display in a view
host/window/script_panel.cpp       what a person types
host/cmd/dispatcher.cpp            finds the commands of scripts
host/cmd/dispatcher.h              declares that
host/cmd/loop.cpp                  deferred scripts and script jobs
host/cmd/session.cpp               runs lines
host/tools/recorder.cpp            lines of a recording, played again
host/cmd/session.h                 declares that
host/workspace/workspace.cpp       the command that a user bound to a key
host/window/person.cpp             the same, by a button of the window
host/builtins/system/repeat_last.cpp  what a menu of a script ran last
host/builtins/system/user_commands.cpp  the script that a command of users is
host/builtins/tools/dragger_context.cpp  the scripts that a tool of users is
'
pattern='(executeLine|executeFile|findCommand|sourceFile)[[:space:]]*\(|interpreter(\(\))?(\.|->|_->)execute[[:space:]]*\(|commands\(\)\.find[[:space:]]*\('

check() {
  local bad=0 file line
  while IFS= read -r line; do
    file=${line%%:*}
    if ! grep -q "^${file} " <<<"$allowed"; then
      echo "$line"
      bad=1
    fi
  done < <(cd "$1" && grep -rnE "$pattern" host --include='*.cpp' --include='*.h' | grep -vE '^host/(mel|include)/' | cut -c1-160)
  return $bad
}

# The lint proves itself on planted offences before it judges the tree.
planted=$(mktemp -d)
trap 'rm -rf "$planted"' EXIT
mkdir -p "$planted/host/tools" "$planted/host/app" "$planted/host/mel"
echo '(void)session.executeLine("move 1 0 0");' >"$planted/host/tools/bad.cpp"
echo 'auto done = context.session.interpreter().execute("delete");' >>"$planted/host/tools/bad.cpp"
echo 'const auto command = session.commands().find("delete");' >>"$planted/host/tools/bad.cpp"
echo 'session.executeLine(typed);' >"$planted/host/app/prompt.cpp"
echo 'Result<Value> execute(std::string_view source);' >"$planted/host/mel/engine.h"
if check "$planted" >"$planted/out"; then
  echo "the lint of script text does not see planted offences"
  exit 1
fi
[ "$(wc -l <"$planted/out")" -eq 3 ] || { echo "planted offences:"; cat "$planted/out"; exit 1; }

# Every place in the list is still one: it does not grow stale.
while read -r file _; do
  [ -z "$file" ] && continue
  grep -qE "$pattern" "$root/$file" 2>/dev/null || { echo "$file runs no script text: take it off the list"; exit 1; }
done <<<"$allowed"

check "$root" && echo "the host's own parts speak no script text to each other"
