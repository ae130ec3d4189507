#include <cctype>
#include <cstring>

#include "host/mel/builtin_support.h"
#include "host/mel/operators.h"

namespace host::mel {

namespace {

Result<std::FILE*> fileOf(Engine& engine, const Value& number, std::string_view function) {
  const Result<std::int32_t> id = number.toInt();
  std::FILE* file = id ? engine.files().find(*id) : nullptr;
  if (!file) return fail("{}: {} is not an open file.", function, id ? *id : 0);
  return file;
}

Result<void> fopenFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const bool hasMode = arguments.size() == 2;
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& path, const std::string& mode) -> Result<void> {
        constexpr std::string_view kStarts = "rwa";
        if (hasMode && (mode.empty() || kStarts.find(mode[0]) == kStarts.npos ||
                        mode.find_first_not_of("rwabt+") != mode.npos))
          return fail("fopen: \"{}\" is not a file mode; use r, w or a, with + to read and write.",
                      mode);
        result = Value(engine.files().open(path, hasMode ? mode : "r"));
        return {};
      });
}

Result<void> fcloseFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<std::int32_t>(
      arguments, [&](std::int32_t id) { result = Value(engine.files().close(id) < 0 ? -1 : 0); });
}

Result<void> popenFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& command, const std::string& mode) -> Result<void> {
        if (mode != "r" && mode != "w")
          return fail("popen: \"{}\" is not a pipe mode; use r or w.", mode);
        result = Value(engine.files().openPipe(command, mode));
        return {};
      });
}

Result<void> fprintFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "fprint");
  if (!file) return failWith(file.error());
  const std::string text = arguments[1].printText();
  if (std::fwrite(text.data(), 1, text.size(), *file) != text.size())
    return fail("fprint: the file could not be written.");
  result = Value(static_cast<std::int32_t>(text.size()));
  return {};
}

/// The next line with its line end; empty at the end of the file.
Result<void> fgetlineFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "fgetline");
  if (!file) return failWith(file.error());
  std::string line;
  for (int c = std::fgetc(*file); c != EOF; c = std::fgetc(*file)) {
    line += static_cast<char>(c);
    if (c == '\n' || line.size() >= kMaxStringBytes) break;
  }
  result = Value(std::move(line));
  return {};
}

/// The next run of characters that are none of the separators (blanks unless given).
Result<void> fgetwordFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "fgetword");
  if (!file) return failWith(file.error());
  const Result<std::string> given =
      arguments.size() > 1 ? arguments[1].toText() : std::string(" \t\r\n");
  if (!given) return failWith(given.error());
  std::string word;
  for (int c = std::fgetc(*file); c != EOF; c = std::fgetc(*file)) {
    const bool isSeparator = given->find(static_cast<char>(c)) != std::string::npos;
    if (isSeparator && !word.empty()) break;
    if (!isSeparator) word += static_cast<char>(c);
    if (word.size() >= kMaxStringBytes) break;
  }
  result = Value(std::move(word));
  return {};
}

template <class T>
bool readRaw(std::FILE* file, T& datum) {
  return std::fread(&datum, sizeof datum, 1, file) == 1;
}

/// Binary read of one datum of the second argument's type; strings end with a zero byte.
Result<void> freadFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "fread");
  if (!file) return failWith(file.error());
  switch (arguments[1].type()) {
    case Type::Int: {
      std::int32_t number = 0;
      result = Value(readRaw(*file, number) ? number : 0);
      return {};
    }
    case Type::Float: {
      double number = 0.0;
      result = Value(readRaw(*file, number) ? number : 0.0);
      return {};
    }
    case Type::Vector: {
      double parts[3] = {};
      const bool isRead = readRaw(*file, parts);
      result = isRead ? Value(Vec3{parts[0], parts[1], parts[2]}) : Value(Vec3{});
      return {};
    }
    case Type::String: {
      std::string text;
      for (int c = std::fgetc(*file); c != EOF && c != 0; c = std::fgetc(*file)) {
        text += static_cast<char>(c);
        if (text.size() >= kMaxStringBytes) break;
      }
      result = Value(std::move(text));
      return {};
    }
    default:
      return invalidCall("fread");
  }
}

Result<void> fwriteFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "fwrite");
  if (!file) return failWith(file.error());
  const Value& datum = arguments[1];
  std::string bytes;
  const auto put = [&](const auto& number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  };
  switch (datum.type()) {
    case Type::Int:
      put(datum.intValue());
      break;
    case Type::Float:
      put(datum.floatValue());
      break;
    case Type::Vector:
      put(datum.vector());
      break;
    case Type::String:
      bytes.assign(datum.string().c_str(), datum.string().size() + 1);
      break;
    default:
      return invalidCall("fwrite");
  }
  if (std::fwrite(bytes.data(), 1, bytes.size(), *file) != bytes.size())
    return fail("fwrite: the file could not be written.");
  result = Value(static_cast<std::int32_t>(bytes.size()));
  return {};
}

/// True when nothing is left to read, also before a read has tried.
Result<void> feofFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "feof");
  if (!file) return failWith(file.error());
  const int next = std::fgetc(*file);
  if (next != EOF) std::ungetc(next, *file);
  result = Value(next == EOF);
  return {};
}

Result<void> fflushFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "fflush");
  if (!file) return failWith(file.error());
  result = Value(std::fflush(*file));
  return {};
}

Result<void> frewindFunction(Engine& engine, std::span<Value> arguments, Value&) {
  const Result<std::FILE*> file = fileOf(engine, arguments[0], "frewind");
  if (!file) return failWith(file.error());
  std::rewind(*file);
  return {};
}

constexpr Builtin kFile[] = {
    {"fopen", fopenFunction, 1, 2, Type::Int},
    {"fclose", fcloseFunction, 1, 1, Type::Int},
    {"popen", popenFunction, 2, 2, Type::Int},
    {"pclose", fcloseFunction, 1, 1, Type::Int},
    {"fprint", fprintFunction, 2, 2, Type::Int},
    {"fgetline", fgetlineFunction, 1, 1, Type::String},
    {"fgetword", fgetwordFunction, 1, 2, Type::String},
    {"fread", freadFunction, 2, 2, Type::None},
    {"fwrite", fwriteFunction, 2, 2, Type::Int},
    {"feof", feofFunction, 1, 1, Type::Int},
    {"fflush", fflushFunction, 1, 1, Type::Int},
    {"frewind", frewindFunction, 1, 1, Type::None},
};

}  // namespace

std::span<const Builtin> fileFunctions() {
  return kFile;
}

}  // namespace host::mel
