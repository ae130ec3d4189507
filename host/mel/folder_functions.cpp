#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "host/mel/builtin_support.h"
#include "host/mel/regex.h"

namespace host::mel {

namespace {

namespace fs = std::filesystem;

/// filetest(-f path), the tests of the shell: r w x e f d h/L s.
Result<void> filetestFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& flag, const std::string& path) -> Result<void> {
        if (flag.size() != 2 || flag[0] != '-')
          return fail(ErrorKind::BadArgument, "Invalid flag '{}'.", flag);
        std::error_code ignored;
        const fs::file_status status = fs::status(path, ignored);
        switch (flag[1]) {
          case 'r':
            result = Value(::access(path.c_str(), R_OK) == 0);
            return {};
          case 'w':
            result = Value(::access(path.c_str(), W_OK) == 0);
            return {};
          case 'x':
            result = Value(::access(path.c_str(), X_OK) == 0);
            return {};
          case 'e':
            result = Value(fs::exists(status));
            return {};
          case 'f':
            result = Value(fs::is_regular_file(status));
            return {};
          case 'd':
            result = Value(fs::is_directory(status));
            return {};
          case 'h':
          case 'L':
            result = Value(fs::is_symlink(fs::symlink_status(path, ignored)));
            return {};
          case 's':
            result = Value(fs::is_regular_file(status) && fs::file_size(path, ignored) > 0);
            return {};
          default:
            return fail(ErrorKind::BadArgument, "Invalid flag '{}'.", flag);
        }
      });
}

/// sysFile: one action on one path; 1 if it succeeded.
Result<void> sysFileFunction(Engine&, std::span<Value> arguments, Value& result) {
  constexpr std::string_view kValued[] = {"ren", "rename", "mov", "move", "cp", "copy"};
  constexpr std::string_view kBare[] = {"del", "delete", "md", "makeDir", "red", "removeEmptyDir"};
  const Result<FlaggedArguments> given = splitFlags(arguments, kValued, kBare);
  if (!given) return failWith(given.error());
  if (given->flags.size() != 1 || given->plain.size() != 1) return invalidCall("sysFile");
  const std::string& action = given->flags[0].first;
  return unpack<std::string>(given->plain, [&](const std::string& path) -> Result<void> {
    const Result<std::string> target = given->flags[0].second.toText();
    if (!target) return failWith(target.error());
    std::error_code error;
    bool isDone = false;
    if (action == "del" || action == "delete") {
      isDone = fs::is_regular_file(path, error) && fs::remove(path, error);
    } else if (action == "md" || action == "makeDir") {
      isDone = fs::create_directories(path, error) || fs::is_directory(path, error);
    } else if (action == "red" || action == "removeEmptyDir") {
      isDone = fs::is_directory(path, error) && fs::remove(path, error);
    } else if (action == "cp" || action == "copy") {
      isDone = fs::copy_file(path, *target, fs::copy_options::overwrite_existing, error);
    } else {
      fs::rename(path, *target, error);
      isDone = !error;
    }
    result = Value(isDone);
    return {};
  });
}

/// getFileList(-folder f -filespec "*.mel"): names in a folder, sorted.
Result<void> getFileListFunction(Engine&, std::span<Value> arguments, Value& result) {
  constexpr std::string_view kValued[] = {"fld", "folder", "fs", "filespec"};
  const Result<FlaggedArguments> given = splitFlags(arguments, kValued, {});
  if (!given) return failWith(given.error());
  const Value* folderFlag = given->find("folder", "fld");
  const Value* patternFlag = given->find("filespec", "fs");
  const Result<std::string> folder = folderFlag ? folderFlag->toText() : std::string(".");
  const Result<std::string> pattern = patternFlag ? patternFlag->toText() : std::string("*");
  if (!folder || !pattern) return invalidCall("getFileList");
  StringArray names;
  std::error_code error;
  for (fs::directory_iterator entry(*folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (globMatches(name, *pattern)) names.push_back(std::move(name));
  }
  std::ranges::sort(names);
  result = Value(std::move(names));
  return {};
}

Result<void> pwdFunction(Engine&, std::span<Value>, Value& result) {
  std::error_code error;
  result = Value(fs::current_path(error).string());
  return {};
}

/// 0 if the folder was entered, else -1.
Result<void> chdirFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& path) {
    std::error_code error;
    fs::current_path(path, error);
    result = Value(error ? -1 : 0);
  });
}

constexpr Builtin kFolder[] = {
    {"filetest", filetestFunction, 2, 2, Type::Int},
    {"sysFile", sysFileFunction, 2, 3, Type::Int},
    {"getFileList", getFileListFunction, 0, -1, Type::StringArray},
    {"pwd", pwdFunction, 0, 0, Type::String},
    {"chdir", chdirFunction, 1, 1, Type::Int},
};

}  // namespace

std::span<const Builtin> folderFunctions() {
  return kFolder;
}

}  // namespace host::mel
