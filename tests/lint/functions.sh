#!/usr/bin/env bash
# A function past 80 lines has a seam that was not cut; those that have a reason stand in
# tests/lint/long_functions.txt. Reads the layout that clang-format gives: a function's closing brace
# stands in the column in which its head begins.
# usage: functions.sh ROOT
set -euo pipefail
limit=80
awk_program='
  function finish(indent) {
    if (FNR - start[indent] + 1 > limit) printf "%s %s %d\n", FILENAME, name[indent], FNR - start[indent] + 1
    isOpen[indent] = 0
  }
  FNR == 1 { for (i in isOpen) isOpen[i] = 0; head = ""; isMacro = 0 }
  isMacro { isMacro = /\\$/; next }
  /^#/ { isMacro = /\\$/; next }
  /^[ ]*(\/\/|$)/ { next }
  {
    sub(/ +\/\/.*$/, "")
    match($0, /^ */)
    indent = RLENGTH
    for (i in isOpen) if (isOpen[i] && indent == i && $0 ~ /^ *}/) finish(i)
    # Inside an open function nothing else begins.
    for (i in isOpen) if (isOpen[i]) next
    if (head == "") { head = $0; headStart = FNR; headIndent = indent } else head = head " " $0
    if ($0 ~ /[;}]$/ || $0 ~ /:$/) { head = ""; next }
    if ($0 !~ /\{$/) next
    isFunction = head ~ /\(/ && head !~ /= *\{$/ &&
                 head !~ /^ *(namespace|class|struct|enum|union|extern|TEST_CASE|using)/
    if (isFunction) {
      isOpen[headIndent] = 1; start[headIndent] = headStart
      called = head
      sub(/\(.*/, "", called); sub(/.*[ *&]/, "", called)
      name[headIndent] = called
    }
    head = ""
  }
'
# FILE NAME LINES of each function past the limit.
long_functions() {
  local folders=() folder
  for folder in host plugin shared commands modeling quaddraw uv brushes; do
    if [ -d "$folder" ]; then folders+=("$folder"); fi
  done
  find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' \) -print0 | sort -z |
    xargs -0 awk -v limit=$limit "$awk_program"
}

planted=$(mktemp -d)
trap 'rm -rf "$planted"' EXIT
mkdir "$planted/host"
{
  echo 'namespace host {'
  echo 'Result<int> Thing::tooLong(const std::string& text,'
  echo '                           int more) {'
  for i in $(seq 80); do echo "  call($i);"; done
  echo '}'
  echo 'int justRight() {'
  for i in $(seq 78); do echo "  call($i);"; done
  echo '}'
  echo 'class Holder {'
  echo '  void inside() {'
  for i in $(seq 80); do echo "    call($i);"; done
  echo '  }'
  echo '};'
  echo '}  // namespace host'
} >"$planted/host/planted.cpp"
found=$(cd "$planted" && long_functions | awk '{ print $2 }' | paste -sd' ')
[ "$found" = "Thing::tooLong inside" ] || { echo "the length lint finds '$found' in its plant"; exit 1; }

cd "$1"
list=tests/lint/long_functions.txt
status=0
found=$(long_functions)
while read -r file name lines; do
  [ -n "$file" ] || continue
  grep -q "^$file $name:" "$list" || { echo "$file: $name has $lines lines, more than $limit"; status=1; }
done <<<"$found"
# An entry that nothing needs any more goes.
while read -r file name; do
  grep -q "^$file ${name%:} " <<<"$found" || { echo "$list: $file ${name%:} is short now"; status=1; }
done < <(grep -v '^#' "$list" | awk 'NF { print $1, $2 }')
[ $status -eq 0 ] && echo "no function is past $limit lines but for those with a reason"
exit $status
