#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <deque>

#include "host/io/ma/ma_file.h"
#include "host/io/ma/ma_mesh_rows.h"
#include "host/io/mapped_file.h"
#include "host/mel/lexer.h"

namespace host::io {
namespace {

using mel::Token;
using mel::TokenKind;

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, word) != words.end();
}

bool isOn(std::string_view word) {
  return isOneOf(word, {"on", "yes", "true", "1"});
}

/// What may follow the plus of a sum of strings; before a number it is a sign.
bool comesAfterPlus(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '"';
}

bool isNotFinite(std::string_view word) {
  return isOneOf(word, {"nan", "inf", "NaN", "Inf", "NAN", "INF", "infinity"});
}

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

/// Strings that the arena of the lexer holds, and those that sums of strings made.
struct Decoded {
  mel::Arena arena;
  std::deque<std::string> joined;
};

/// Cuts the text into statements and files them. Statements with big rows are not read here, only
/// found: their numbers are read when all of a mesh's rows are known.
class Parser {
 public:
  explicit Parser(MaFile& file)
      : file_(file), decoded_(std::make_shared<Decoded>()), lexer_(file.text, decoded_->arena) {
    file_.decoded = decoded_;
  }

  MaResult<void> parse() {
    while (true) {
      const Token token = lexer_.nextWord();
      if (token.kind == TokenKind::End) break;
      if (token.is(";")) continue;
      start_ = token.begin.offset;
      if (token.kind != TokenKind::Word) {
        refuse(token, "a statement should begin here");
        break;
      }
      statement(token.text);
      if (fault_) break;
    }
    if (fault_) return tl::unexpected(std::move(*fault_));
    if (!hasEnd())
      file_.warnings.push_back(file_.message(
          file_.text.size(), "the file does not end with its end line: perhaps it was cut off"));
    return buildMeshes();
  }

 private:
  // Tokens.

  void failAt(std::size_t offset, std::string reason) {
    if (!fault_) fault_ = MaFault{offset, std::move(reason)};
  }
  void refuse(const Token& token, std::string_view expected) {
    if (token.kind == TokenKind::End)
      failAt(start_, "the statement that begins here has no end");
    else if (token.kind == TokenKind::Bad)
      failAt(token.begin.offset, std::string(token.text));
    else
      failAt(token.begin.offset,
             fmt::format("{}, not '{}'", expected, textOf(token).substr(0, 40)));
  }
  [[nodiscard]] std::string_view textOf(const Token& token) const {
    return file_.text.substr(token.begin.offset, lexer_.position().offset - token.begin.offset);
  }

  /// One word or string.
  std::string_view text() {
    const Token token = lexer_.nextWord();
    if (token.kind == TokenKind::String) return token.text;
    if (token.kind == TokenKind::Word || token.kind == TokenKind::Int ||
        token.kind == TokenKind::Float)
      return textOf(token);
    refuse(token, "a name or a value should stand here");
    return {};
  }
  bool flagValue() { return isOn(text()); }

  /// All up to the semicolon. Flags end up as words that begin with '-'.
  std::vector<MaToken> restOfStatement() {
    std::vector<MaToken> tokens;
    bool joins = false;
    while (!fault_) {
      if (lexer_.peek() == '+' && comesAfterPlus(lexer_.at(1))) {
        mel::Position after = lexer_.position();
        ++after.offset;
        lexer_.rewind(after);
        joins = true;
        continue;
      }
      const Token token = lexer_.nextWord();
      if (token.is(";")) break;
      if (token.is("(") || token.is(")") || token.is("{") || token.is("}") || token.is(","))
        continue;
      if (!addToken(tokens, token, joins)) refuse(token, "a value should stand here");
      joins = false;
    }
    return tokens;
  }

  bool addToken(std::vector<MaToken>& tokens, const Token& token, bool joins) {
    if (token.kind == TokenKind::String) {
      if (joins && !tokens.empty() && tokens.back().kind == MaToken::Kind::String) {
        // A sum of strings: the longest ones have thousands of terms, all added to one text.
        if (decoded_->joined.empty() ||
            decoded_->joined.back().data() != tokens.back().text.data())
          decoded_->joined.emplace_back(tokens.back().text);
        decoded_->joined.back() += token.text;
        tokens.back().text = decoded_->joined.back();
      } else {
        tokens.push_back({MaToken::Kind::String, token.text});
      }
      return true;
    }
    if (token.kind == TokenKind::Int || token.kind == TokenKind::Float) {
      const std::string_view number = textOf(token);
      double value = 0;
      MaRow row(number);
      if (!row.read(value) || !row.isAtEnd()) return false;
      tokens.push_back({MaToken::Kind::Number, number});
      return true;
    }
    if (token.kind != TokenKind::Word) return false;
    if (isNotFinite(token.text) || isNotFinite(token.text.substr(1))) return false;
    tokens.push_back({MaToken::Kind::Word, token.text});
    return true;
  }

  [[nodiscard]] std::string_view rawStatement() const {
    // The semicolon is the last character read.
    return file_.text.substr(start_, lexer_.position().offset - 1 - start_);
  }

  void endStatement() {
    if (fault_) return;
    const Token token = lexer_.nextWord();
    if (!token.is(";")) refuse(token, "the statement should end here");
  }

  // Statements.

  void statement(std::string_view command) {
    using Handler = void (Parser::*)();
    static constexpr std::pair<std::string_view, Handler> kHandlers[] = {
        {"setAttr", &Parser::setAttr},
        {"createNode", &Parser::createNode},
        {"connectAttr", &Parser::connectAttr},
        {"rename", &Parser::rename},
        {"addAttr", &Parser::addAttr},
        {"select", &Parser::select},
        {"lockNode", &Parser::lockNode},
        {"parent", &Parser::parent},
        {"relationship", &Parser::relationship},
        {"requires", &Parser::require},
        {"fileInfo", &Parser::fileInfo},
        {"currentUnit", &Parser::currentUnit},
        {"file", &Parser::reference},
    };
    for (const auto& [name, handler] : kHandlers)
      if (name == command) return (this->*handler)();
    unknown(command);
  }

  void createNode() {
    MaNode node;
    node.offset = start_;
    while (!fault_) {
      const Token token = lexer_.nextWord();
      if (token.is(";")) break;
      if (token.kind == TokenKind::String || (token.kind == TokenKind::Word && token.text[0] != '-'))
        node.type = token.text;
      else if (isOneOf(token.text, {"-n", "-name"}))
        node.name = text();
      else if (isOneOf(token.text, {"-p", "-parent"}))
        node.parent = text();
      else if (isOneOf(token.text, {"-s", "-shared"}))
        node.isShared = true;
      else if (!isOneOf(token.text, {"-ss", "-skipSelect"}))
        refuse(token, "a flag of createNode should stand here");
    }
    if (!fault_ && !isName(node.type))
      failAt(start_, fmt::format("'{}' is not the name of a node type", node.type.substr(0, 40)));
    file_.nodes.push_back(std::move(node));
    rows_.emplace_back();
  }

  MaNode* current() {
    if (!file_.nodes.empty()) return &file_.nodes.back();
    failAt(start_, "there is no node yet that this could be for");
    return nullptr;
  }

  void select() {
    const std::vector<MaToken> words = restOfStatement();
    for (const MaToken& word : words) {
      if (!isName(word.text)) continue;
      MaNode node;
      node.offset = start_;
      node.name = word.text;
      file_.nodes.push_back(std::move(node));
      rows_.emplace_back();
    }
  }

  void rename() {
    const std::vector<MaToken> words = restOfStatement();
    if (fault_) return;
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
    line.offset = start_;
    std::int64_t declared = -1;
    bool hasPath = false;
    // Flags stand before the name and -type after it.
    while (!fault_) {
      const mel::Position before = lexer_.position();
      const Token token = lexer_.nextWord();
      const bool isFlag = token.kind == TokenKind::Word && token.text.starts_with('-');
      if (isFlag) {
        setAttrFlag(token, line, declared);
      } else if (!hasPath) {
        if (token.kind != TokenKind::String && token.kind != TokenKind::Word) {
          refuse(token, "the name of an attribute should stand here");
          break;
        }
        line.path = withoutDot(token.text);
        hasPath = true;
        if (isBulk(*node, line.path)) return bulkRows(line, declared);
      } else {
        lexer_.rewind(before);
        break;
      }
    }
    if (fault_) return;
    line.values = restOfStatement();
    if (fault_) return;
    for (const MaToken& value : line.values)
      if (value.kind == MaToken::Kind::Word && value.text.starts_with('-'))
        failAt(start_, fmt::format("'{}' is no flag of setAttr", value.text));
    line.raw = rawStatement();
    if (node->type == "mesh" && MaMeshRows::kindOf(line.path) == MaMeshRows::Kind::Values) {
      if (auto done = rows_.back().addValues(line); !done) fault_ = std::move(done).error();
      return;
    }
    node->lines.emplace_back(std::move(line));
  }

  void setAttrFlag(const Token& token, MaSetAttr& line, std::int64_t& declared) {
    const std::string_view flag = token.text;
    if (isOneOf(flag, {"-type", "-typ"})) {
      line.type = text();
    } else if (isOneOf(flag, {"-s", "-size", "-ch", "-capacityHint"})) {
      const std::string_view number = text();
      Index count = 0;
      if (!fault_ && (!MaRow(number).read(count) || count < 0))
        failAt(token.begin.offset, fmt::format("'{}' is not a size", number));
      if (isOneOf(flag, {"-s", "-size"})) declared = count;
    } else if (isOneOf(flag, {"-k", "-keyable"})) {
      line.keyable = flagValue();
    } else if (isOneOf(flag, {"-l", "-lock"})) {
      line.locked = flagValue();
    } else if (isOneOf(flag, {"-cb", "-channelBox"})) {
      line.channelBox = flagValue();
    } else if (isOneOf(flag, {"-ca", "-caching"})) {
      line.caching = flagValue();
    } else if (!isOneOf(flag, {"-av", "-alteredValue", "-c", "-clamp"})) {
      failAt(token.begin.offset, fmt::format("'{}' is no flag of setAttr", flag));
    }
  }

  static bool isBulk(const MaNode& node, std::string_view path) {
    return node.type == "mesh" && MaMeshRows::kindOf(path) == MaMeshRows::Kind::Bulk;
  }

  /// Leaves the numbers alone and goes to the semicolon behind them.
  void bulkRows(MaSetAttr& line, std::int64_t declared) {
    while (!fault_ && lexer_.peek() == '-' && lexer_.at(1) >= 'a' && lexer_.at(1) <= 'z')
      setAttrFlag(lexer_.nextWord(), line, declared);
    if (fault_) return;
    const std::string_view text = file_.text;
    const std::size_t begin = lexer_.position().offset;
    const std::size_t end = text.find(';', begin);
    if (end == std::string_view::npos)
      return failAt(start_, "the statement that begins here has no end");
    mel::Position after = lexer_.position();  // its line is not used
    after.offset = end + 1;
    lexer_.rewind(after);
    auto done =
        rows_.back().addBulk(start_, line.path, declared, text.substr(begin, end - begin));
    if (!done) fault_ = std::move(done).error();
  }

  void addAttr() {
    MaNode* node = current();
    if (!node) return;
    MaAddAttr line;
    line.offset = start_;
    for (MaToken& token : restOfStatement()) {
      if (token.kind == MaToken::Kind::Word && token.text.starts_with('-'))
        line.flags.emplace_back(token.text.substr(1), std::vector<MaToken>());
      else if (!line.flags.empty())
        line.flags.back().second.push_back(token);
    }
    if (fault_) return;
    line.raw = rawStatement();
    node->lines.emplace_back(std::move(line));
  }

  void connectAttr() {
    MaConnection connection;
    connection.offset = start_;
    int ends = 0;
    while (!fault_) {
      const Token token = lexer_.nextWord();
      if (token.is(";")) break;
      const bool isFlag = token.kind == TokenKind::Word && token.text.starts_with('-');
      if (isFlag && isOneOf(token.text, {"-na", "-nextAvailable"})) {
        connection.toNextAvailable = true;
      } else if (isFlag && isOneOf(token.text, {"-l", "-lock"})) {
        connection.isLocked = flagValue();
      } else if (isFlag) {
        if (isOneOf(token.text, {"-rd", "-referenceDest"})) (void)text();
      } else if (token.kind == TokenKind::String || token.kind == TokenKind::Word) {
        (ends++ == 0 ? connection.source : connection.destination) = token.text;
      } else {
        refuse(token, "the name of an attribute should stand here");
      }
    }
    if (fault_) return;
    if (ends != 2) return failAt(start_, "connectAttr joins two attributes");
    connection.raw = rawStatement();
    file_.connections.push_back(connection);
  }

  void parent() {
    std::vector<std::string_view> names;
    bool adds = false;
    for (const MaToken& word : restOfStatement()) {
      if (word.text.starts_with('-'))
        adds = adds || isOneOf(word.text, {"-add", "-addObject"});
      else
        names.push_back(word.text);
    }
    if (fault_) return;
    if (!adds || names.size() < 2) return warn("only 'parent -add' has a place in a scene");
    for (std::size_t i = 0; i + 1 < names.size(); ++i)
      file_.instances.push_back({start_, names[i], names.back()});
  }

  void relationship() {
    std::vector<std::string_view> words;
    for (const MaToken& word : restOfStatement())
      if (!word.text.starts_with('-')) words.push_back(word.text);
    if (fault_) return;
    if (words.size() == 4)
      file_.relationships.push_back(
          {start_, words[0], words[1], words[2], words[3], rawStatement()});
    else
      file_.late.push_back(rawStatement());
  }

  void lockNode() {
    std::vector<MaToken> words = restOfStatement();
    if (fault_ || file_.nodes.empty()) return;
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
      file_.late.push_back(rawStatement());
    else
      file_.nodes.back().isLocked = locks;
  }

  void require() {
    const std::vector<MaToken> words = restOfStatement();
    if (fault_) return;
    const auto own = std::ranges::find_if(
        words, [](const MaToken& word) { return word.text == "maya" || word.text == "Maya"; });
    if (own != words.end()) return;
    file_.requirements.push_back(rawStatement());
    // Flags, then the plug-in's name and its version.
    if (words.size() >= 2) file_.plugins.push_back(words[words.size() - 2].text);
  }

  void fileInfo() {
    const std::vector<MaToken> words = restOfStatement();
    if (fault_) return;
    if (words.size() != 2) return failAt(start_, "fileInfo takes a keyword and a value");
    file_.fileInfo.emplace_back(words[0].text, words[1].text);
  }

  void currentUnit() {
    const std::vector<MaToken> words = restOfStatement();
    for (std::size_t i = 0; i + 1 < words.size() && !fault_; i += 2) {
      const std::string_view flag = words[i].text, unit = words[i + 1].text;
      bool isKnown = true;
      if (isOneOf(flag, {"-l", "-linear"}))
        isKnown = scene::parseLinearUnit(unit, file_.units.linear);
      else if (isOneOf(flag, {"-a", "-angle"}))
        isKnown = scene::parseAngularUnit(unit, file_.units.angular);
      else if (isOneOf(flag, {"-t", "-time"}))
        isKnown = scene::framesPerSecondOf(unit) > 0;
      if (!isKnown) return failAt(start_, fmt::format("'{}' is not a unit", unit));
      if (isOneOf(flag, {"-t", "-time"})) file_.units.time = unit;
    }
  }

  void reference() {
    (void)restOfStatement();
    if (!fault_) warn("references to other files are not followed");
  }

  void unknown(std::string_view command) {
    (void)restOfStatement();
    if (fault_) return;
    (file_.nodes.empty() ? file_.early : file_.late).push_back(rawStatement());
    warn(fmt::format("the statement '{}' is not known: kept as it is", command));
  }

  void warn(std::string_view reason) {
    if (file_.warnings.size() < 100) file_.warnings.push_back(file_.message(start_, reason));
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
  std::shared_ptr<Decoded> decoded_;
  mel::Lexer lexer_;
  std::size_t start_ = 0;  ///< of the statement
  std::vector<MaMeshRows> rows_;  ///< one a node
  std::optional<MaFault> fault_;
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
  auto mapped = MappedFile::open(path);
  if (!mapped) return failWith(std::move(mapped).error());
  auto kept = std::make_shared<MappedFile>(*std::move(mapped));
  MaFile file;
  file.name = path;
  file.text = kept->text();
  file.storage = std::move(kept);
  return parseInto(std::move(file));
}

Result<MaFile> parseMa(std::string text, const std::string& name) {
  auto kept = std::make_shared<const std::string>(std::move(text));
  MaFile file;
  file.name = name;
  file.text = *kept;
  file.storage = std::move(kept);
  return parseInto(std::move(file));
}

}  // namespace host::io
