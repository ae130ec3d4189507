#include <fmt/format.h>

#include <algorithm>

#include "host/base/cancel_poll.h"
#include "host/io/ma/ma_file.h"
#include "host/io/ma/ma_mesh_rows.h"
#include "host/io/ma/ma_tokens.h"
#include "host/io/whole_file.h"

namespace host::io {
namespace {

using mel::Token;
using mel::TokenKind;

bool isUuid(std::string_view word) {
  return !word.empty() &&
         word.find_first_not_of("0123456789abcdefABCDEF-") == std::string_view::npos;
}

bool isName(std::string_view word) {
  const auto isIn = [](char c, std::string_view more) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || more.find(c) != more.npos;
  };
  return !word.empty() && isIn(word.front(), "_:") &&
         std::ranges::all_of(word, [&](char c) { return isIn(c, "_:|0123456789"); });
}

std::string_view withoutDot(std::string_view path) {
  return path.starts_with('.') ? path.substr(1) : path;
}

/// Cuts the text into statements and files them. Statements with big rows are not read here, only
/// found: their numbers are read when all of a mesh's rows are known.
class Parser {
 public:
  explicit Parser(MaFile& file) : file_(file), in_(file) {}

  MaResult<void> parse() {
    while (true) {
      const Token token = in_.next();
      if (token.kind == TokenKind::End) break;
      if (token.is(";")) continue;
      in_.begin(token.begin.offset);
      if (token.kind != TokenKind::Word) {
        in_.refuse(token, "a statement should begin here");
        break;
      }
      statement(token.text);
      if (in_.hasFault()) break;
    }
    if (in_.hasFault()) return tl::unexpected(in_.takeFault());
    if (!hasEnd())
      file_.warnings.push_back(file_.message(
          file_.text.size(), "the file does not end with its end line: perhaps it was cut off"));
    return buildMeshes();
  }

 private:
  // Statements.

  void statement(std::string_view command) {
    using Handler = void (Parser::*)();
    static constexpr std::pair<std::string_view, Handler> kHandlers[] = {
        {"setAttr", &Parser::setAttr},         {"createNode", &Parser::createNode},
        {"connectAttr", &Parser::connectAttr}, {"rename", &Parser::rename},
        {"addAttr", &Parser::addAttr},         {"select", &Parser::select},
        {"lockNode", &Parser::lockNode},       {"parent", &Parser::parent},
        {"reorder", &Parser::reorder},         {"relationship", &Parser::relationship},
        {"requires", &Parser::require},        {"fileInfo", &Parser::fileInfo},
        {"currentUnit", &Parser::currentUnit}, {"file", &Parser::reference},
    };
    for (const auto& [name, handler] : kHandlers)
      if (name == command) return (this->*handler)();
    unknown(command);
  }

  void createNode() {
    MaNode node;
    node.offset = in_.start();
    while (!in_.hasFault()) {
      const Token token = in_.next();
      if (token.is(";")) break;
      if (token.kind == TokenKind::String ||
          (token.kind == TokenKind::Word && token.text[0] != '-'))
        node.type = token.text;
      else if (isOneOf(token.text, {"-n", "-name"}))
        node.name = in_.text();
      else if (isOneOf(token.text, {"-p", "-parent"}))
        node.parent = in_.text();
      else if (isOneOf(token.text, {"-s", "-shared"}))
        node.isShared = true;
      else if (!isOneOf(token.text, {"-ss", "-skipSelect"}))
        in_.refuse(token, "a flag of createNode should stand here");
    }
    if (!in_.hasFault() && !isName(node.type))
      in_.failAt(in_.start(),
                 fmt::format("'{}' is not the name of a node type", node.type.substr(0, 40)));
    file_.nodes.push_back(std::move(node));
    rows_.emplace_back();
  }

  MaNode* current() {
    if (!file_.nodes.empty()) return &file_.nodes.back();
    in_.failAt(in_.start(), "there is no node yet that this could be for");
    return nullptr;
  }

  void select() {
    const std::vector<MaToken> words = in_.restOfStatement();
    for (const MaToken& word : words) {
      if (!isName(word.text)) continue;
      MaNode node;
      node.offset = in_.start();
      node.name = word.text;
      file_.nodes.push_back(std::move(node));
      rows_.emplace_back();
    }
  }

  void rename() {
    const std::vector<MaToken> words = in_.restOfStatement();
    if (in_.hasFault()) return;
    MaNode* node = current();
    if (!node) return;
    if (words.size() == 2 && isOneOf(words[0].text, {"-uid", "-uuid"}) && isUuid(words[1].text))
      node->uuid = words[1].text;
    else
      warn("only 'rename -uid' has a place in a scene: passed over");
  }

  void setAttr() {
    MaNode* node = current();
    if (!node) return;
    MaSetAttr line;
    line.offset = in_.start();
    std::int64_t declared = -1;
    bool hasPath = false;
    // Flags stand before the name and -type after it.
    while (!in_.hasFault()) {
      const mel::Position before = in_.lexer().position();
      const Token token = in_.next();
      const bool isFlag = token.kind == TokenKind::Word && token.text.starts_with('-');
      if (isFlag) {
        setAttrFlag(token, line, declared);
      } else if (!hasPath) {
        if (token.kind != TokenKind::String && token.kind != TokenKind::Word) {
          in_.refuse(token, "the name of an attribute should stand here");
          break;
        }
        line.path = withoutDot(token.text);
        hasPath = true;
        if (isBulk(*node, line.path)) return bulkRows(line, declared);
      } else {
        in_.lexer().rewind(before);
        break;
      }
    }
    if (in_.hasFault()) return;
    line.values = in_.restOfStatement();
    if (in_.hasFault()) return;
    for (const MaToken& value : line.values)
      if (value.kind == MaToken::Kind::Word && value.text.starts_with('-'))
        in_.failAt(in_.start(), fmt::format("'{}' is no flag of setAttr", value.text));
    line.raw = in_.rawStatement();
    if (node->type == "mesh" && MaMeshRows::kindOf(line.path) == MaMeshRows::Kind::Values) {
      if (auto done = rows_.back().addValues(line); !done) in_.fail(std::move(done).error());
      return;
    }
    node->lines.emplace_back(std::move(line));
  }

  void setAttrFlag(const Token& token, MaSetAttr& line, std::int64_t& declared) {
    const std::string_view flag = token.text;
    if (isOneOf(flag, {"-type", "-typ"})) {
      line.type = in_.text();
    } else if (isOneOf(flag, {"-s", "-size", "-ch", "-capacityHint"})) {
      const std::string_view number = in_.text();
      Index count = 0;
      if (!in_.hasFault() && (!MaRow(number).read(count) || count < 0))
        in_.failAt(token.begin.offset, fmt::format("'{}' is not a size", number));
      if (isOneOf(flag, {"-s", "-size"})) declared = count;
    } else if (isOneOf(flag, {"-k", "-keyable"})) {
      line.keyable = in_.flagValue();
    } else if (isOneOf(flag, {"-l", "-lock"})) {
      line.locked = in_.flagValue();
    } else if (isOneOf(flag, {"-cb", "-channelBox"})) {
      line.channelBox = in_.flagValue();
    } else if (isOneOf(flag, {"-ca", "-caching"})) {
      line.caching = in_.flagValue();
    } else if (!isOneOf(flag, {"-av", "-alteredValue", "-c", "-clamp"})) {
      in_.failAt(token.begin.offset, fmt::format("'{}' is no flag of setAttr", flag));
    }
  }

  static bool isBulk(const MaNode& node, std::string_view path) {
    return node.type == "mesh" && MaMeshRows::kindOf(path) == MaMeshRows::Kind::Bulk;
  }

  /// Leaves the numbers alone and goes to the semicolon behind them.
  void bulkRows(MaSetAttr& line, std::int64_t declared) {
    while (!in_.hasFault() && in_.lexer().peek() == '-' && in_.lexer().at(1) >= 'a' &&
           in_.lexer().at(1) <= 'z')
      setAttrFlag(in_.next(), line, declared);
    if (in_.hasFault()) return;
    const std::string_view text = file_.text;
    const std::size_t begin = in_.lexer().position().offset;
    const std::size_t end = text.find(';', begin);
    if (end == std::string_view::npos)
      return in_.failAt(in_.start(), "the statement that begins here has no end");
    mel::Position after = in_.lexer().position();  // its line is not used
    after.offset = end + 1;
    in_.lexer().rewind(after);
    auto done =
        rows_.back().addBulk(in_.start(), line.path, declared, text.substr(begin, end - begin));
    if (!done) in_.fail(std::move(done).error());
  }

  void addAttr() {
    MaNode* node = current();
    if (!node) return;
    MaAddAttr line;
    line.offset = in_.start();
    for (MaToken& token : in_.restOfStatement()) {
      if (token.kind == MaToken::Kind::Word && token.text.starts_with('-'))
        line.flags.emplace_back(token.text.substr(1), std::vector<MaToken>());
      else if (!line.flags.empty())
        line.flags.back().second.push_back(token);
    }
    if (in_.hasFault()) return;
    line.raw = in_.rawStatement();
    node->lines.emplace_back(std::move(line));
  }

  void connectAttr() {
    MaConnection connection;
    connection.offset = in_.start();
    int ends = 0;
    while (!in_.hasFault()) {
      const Token token = in_.next();
      if (token.is(";")) break;
      const bool isFlag = token.kind == TokenKind::Word && token.text.starts_with('-');
      if (isFlag && isOneOf(token.text, {"-na", "-nextAvailable"})) {
        connection.toNextAvailable = true;
      } else if (isFlag && isOneOf(token.text, {"-l", "-lock"})) {
        connection.isLocked = in_.flagValue();
      } else if (isFlag) {
        if (isOneOf(token.text, {"-rd", "-referenceDest"})) (void)in_.text();
      } else if (token.kind == TokenKind::String || token.kind == TokenKind::Word) {
        (ends++ == 0 ? connection.source : connection.destination) = token.text;
      } else {
        in_.refuse(token, "the name of an attribute should stand here");
      }
    }
    if (in_.hasFault()) return;
    if (ends != 2) return in_.failAt(in_.start(), "connectAttr joins two attributes");
    connection.raw = in_.rawStatement();
    file_.connections.push_back(connection);
  }

  /// Siblings that go to the end of their row, by their paths.
  void reorder() {
    std::vector<std::string_view> names;
    bool isToEnd = false;
    for (const MaToken& word : in_.restOfStatement()) {
      if (word.text.starts_with('-'))
        isToEnd = isToEnd || isOneOf(word.text, {"-b", "-back"});
      else
        names.push_back(word.text);
    }
    if (in_.hasFault()) return;
    if (!isToEnd || names.empty()) return warn("only 'reorder -back' has a place in a scene");
    for (const std::string_view name : names) file_.instances.push_back({in_.start(), name, {}});
  }

  void parent() {
    std::vector<std::string_view> names;
    bool adds = false, isToWorld = false;
    for (const MaToken& word : in_.restOfStatement()) {
      if (isOneOf(word.text, {"-w", "-world"}))
        isToWorld = true;
      else if (word.text.starts_with('-'))
        adds = adds || isOneOf(word.text, {"-add", "-addObject"});
      else
        names.push_back(word.text);
    }
    if (in_.hasFault()) return;
    if (!adds || names.size() < (isToWorld ? 1 : 2))
      return warn("only 'parent -add' has a place in a scene");
    if (!isToWorld) {
      for (std::size_t i = 0; i + 1 < names.size(); ++i)
        file_.instances.push_back({in_.start(), names[i], names.back()});
      return;
    }
    for (const std::string_view name : names)
      file_.instances.push_back({in_.start(), name, {}, true});
  }

  void relationship() {
    std::vector<std::string_view> words;
    for (const MaToken& word : in_.restOfStatement())
      if (!word.text.starts_with('-')) words.push_back(word.text);
    if (in_.hasFault()) return;
    if (words.size() == 4)
      file_.relationships.push_back(
          {in_.start(), words[0], words[1], words[2], words[3], in_.rawStatement()});
    else
      file_.late.push_back(in_.rawStatement());
  }

  void lockNode() {
    std::vector<MaToken> words = in_.restOfStatement();
    if (in_.hasFault() || file_.nodes.empty()) return;
    bool locks = true, names = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (!words[i].text.starts_with('-')) {
        names = true;
      } else if (i + 1 < words.size()) {
        const bool on = isOn(words[++i].text);
        if (isOneOf(words[i - 1].text, {"-l", "-lock"})) locks = on;
      }
    }
    if (names)
      file_.late.push_back(in_.rawStatement());
    else
      file_.nodes.back().isLocked = locks;
  }

  void require() {
    const std::vector<MaToken> words = in_.restOfStatement();
    if (in_.hasFault()) return;
    const auto own = std::ranges::find_if(
        words, [](const MaToken& word) { return word.text == "maya" || word.text == "Maya"; });
    if (own != words.end()) return;
    file_.requirements.push_back(in_.rawStatement());
    // Flags, then the plug-in's name and its version.
    if (words.size() >= 2) file_.plugins.push_back(words[words.size() - 2].text);
  }

  void fileInfo() {
    const std::vector<MaToken> words = in_.restOfStatement();
    if (in_.hasFault()) return;
    if (words.size() != 2) return in_.failAt(in_.start(), "fileInfo takes a keyword and a value");
    file_.fileInfo.emplace_back(words[0].text, words[1].text);
  }

  void currentUnit() {
    const std::vector<MaToken> words = in_.restOfStatement();
    for (std::size_t i = 0; i + 1 < words.size() && !in_.hasFault(); i += 2) {
      const std::string_view flag = words[i].text, unit = words[i + 1].text;
      bool isKnown = true;
      if (isOneOf(flag, {"-l", "-linear"}))
        isKnown = scene::parseLinearUnit(unit, file_.units.linear);
      else if (isOneOf(flag, {"-a", "-angle"}))
        isKnown = scene::parseAngularUnit(unit, file_.units.angular);
      else if (isOneOf(flag, {"-t", "-time"}))
        isKnown = scene::framesPerSecondOf(unit) > 0;
      if (!isKnown) return in_.failAt(in_.start(), fmt::format("'{}' is not a unit", unit));
      if (isOneOf(flag, {"-t", "-time"})) file_.units.time = unit;
    }
  }

  /// `file -rdi` says of all files below what the `file -r` of each says again.
  void reference() {
    MaReference reference;
    reference.offset = in_.start();
    bool isReference = false, isDepthInfo = false;
    const std::vector<MaToken> words = in_.restOfStatement();
    if (in_.hasFault()) return;
    for (std::size_t i = 0; i < words.size(); ++i) {
      const std::string_view flag = words[i].text;
      const auto value = [&] {
        return i + 1 < words.size() ? words[++i].text : std::string_view();
      };
      if (words[i].kind != MaToken::Kind::Word || !flag.starts_with('-'))
        reference.path = flag;
      else if (isOneOf(flag, {"-r", "-reference"}))
        isReference = true;
      else if (isOneOf(flag, {"-rdi", "-referenceDepthInfo"}))
        isDepthInfo = !value().empty();
      else if (isOneOf(flag, {"-ns", "-namespace"}))
        reference.nameSpace = value();
      else if (isOneOf(flag, {"-rpr", "-renamingPrefix"}))
        reference.prefix = value();
      else if (isOneOf(flag, {"-rfn", "-referenceNode"}))
        reference.node = value();
      else if (isOneOf(flag, {"-dr", "-deferReference"}))
        reference.isDeferred = isOn(value());
      else if (isOneOf(flag, {"-op", "-options"}))
        reference.options = value();
      else if (isOneOf(flag, {"-typ", "-type"}))
        reference.type = value();
      else if (isOneOf(flag, {"-shd", "-sharedNodes"}))
        reference.shared.push_back(value());
    }
    reference.raw = in_.rawStatement();
    if (isReference && !reference.path.empty())
      file_.references.push_back(reference);
    else if (!isDepthInfo)
      unknownStatement("file");
  }

  void unknown(std::string_view command) {
    (void)in_.restOfStatement();
    if (!in_.hasFault()) unknownStatement(command);
  }

  void unknownStatement(std::string_view command) {
    (file_.nodes.empty() ? file_.early : file_.late).push_back(in_.rawStatement());
    warn(fmt::format("the statement '{}' is not known: kept as it is", command));
  }

  void warn(std::string_view reason) {
    if (file_.warnings.size() < 100) file_.warnings.push_back(file_.message(in_.start(), reason));
  }

  // The end.

  [[nodiscard]] bool hasEnd() const {
    const std::size_t end = file_.text.find_last_not_of(" \t\r\n");
    if (end == std::string_view::npos) return false;
    const std::size_t line = file_.text.rfind('\n', end) + 1;  // npos + 1 is 0
    return file_.text.substr(line, end + 1 - line).starts_with("// End");
  }

  MaResult<void> buildMeshes() {
    const double unit = scene::centimetersPer(file_.units.linear);
    std::vector<std::pair<std::size_t, std::string>> warnings;
    for (std::size_t i = 0; i < file_.nodes.size(); ++i) {
      if (rows_[i].isEmpty()) continue;
      auto mesh = rows_[i].build(file_.text, unit, warnings);
      if (!mesh) return tl::unexpected(std::move(mesh).error());
      file_.nodes[i].mesh = *std::move(mesh);
    }
    for (const auto& [offset, reason] : warnings)
      file_.warnings.push_back(file_.message(offset, reason));
    return {};
  }

  MaFile& file_;
  MaTokens in_;
  std::vector<MaMeshRows> rows_;  ///< one a node
};

Result<MaFile> parseInto(MaFile file) {
  Parser parser(file);
  if (file.text.find('\0') != std::string_view::npos)
    return fail("{}: this is not text; is it a scene?",
                file.message(file.text.find('\0'), "a zero byte"));
  if (auto done = parser.parse(); !done)
    return fail("{}", file.message(done.error().offset, done.error().reason));
  return file;
}

}  // namespace

std::size_t MaFile::lineOf(std::size_t offset) const {
  const std::string_view before = text.substr(0, std::min(offset, text.size()));
  return static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1;
}

std::string MaFile::message(std::size_t offset, std::string_view reason) const {
  return fmt::format("{}:{}: {}", name, lineOf(offset), reason);
}

Result<MaFile> readMa(const std::string& path) {
  auto content = FileContent::read(path);
  if (!content) return failWith(std::move(content).error());
  auto kept = std::make_shared<FileContent>(*std::move(content));
  MaFile file;
  file.name = path;
  file.text = kept->text();
  file.storage = std::move(kept);
  return cancellable([&] { return parseInto(std::move(file)); });
}

Result<MaFile> parseMa(std::string text, const std::string& name) {
  auto kept = std::make_shared<const std::string>(std::move(text));
  MaFile file;
  file.name = name;
  file.text = *kept;
  file.storage = std::move(kept);
  return cancellable([&] { return parseInto(std::move(file)); });
}

}  // namespace host::io
