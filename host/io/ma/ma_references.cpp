#include "host/io/ma/ma_references.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "host/io/ma/ma_attributes.h"
#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_plugs.h"

namespace host::io {
namespace {

using dg::Node;
using dg::Plug;
using scene::ReferenceEdit;

/// Every name of a path in a namespace: "|a|b" in "c" is "|c:a|c:b". Names from the root stay.
std::string within(std::string_view outer, std::string_view path) {
  std::string result;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('|'), path.size());
    std::string_view name = path.substr(0, end);
    if (!name.empty() && !outer.empty() && !name.starts_with(':')) result.append(outer).append(":");
    result.append(name);
    if (end < path.size()) result += '|';
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return result;
}

std::pair<std::string_view, std::string_view> splitPlug(std::string_view text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return {text, {}};
  return {text.substr(0, dot), text.substr(dot + 1)};
}

/// The statement that does to a selected node what an edit says.
std::string statementOf(const ReferenceEdit& edit) {
  if (edit.kind == ReferenceEdit::AddAttr)
    return edit.words.size() < 4 ? std::string()
                                 : fmt::format("addAttr {} -sn \"{}\" -ln \"{}\";", edit.words[3],
                                               edit.words[2], edit.words[1]);
  return edit.words.size() < 3 ? std::string()
                               : fmt::format("setAttr \".{}\" {};", edit.words[1], edit.words[2]);
}

/// Flags of setAttr stand before the name, -type behind it.
std::string withFlagsInFront(const ReferenceEdit& edit) {
  std::string_view value = edit.words[2];
  std::string flags;
  for (;;) {
    const std::size_t start = value.find_first_not_of(" \t\n");
    if (start == std::string_view::npos) break;
    value.remove_prefix(start);
    const bool isFlag = value.size() > 1 && value[0] == '-' && value[1] >= 'a' && value[1] <= 'z';
    if (!isFlag || value.starts_with("-t")) break;
    std::size_t end = std::min(value.find(' '), value.size());
    if (!value.starts_with("-av") && !value.starts_with("-alt") && value.substr(0, end) != "-c")
      end = std::min(value.find(' ', std::min(end + 1, value.size())), value.size());
    flags.append(value.substr(0, end)).append(" ");
    value.remove_prefix(end);
  }
  return fmt::format("setAttr {}\".{}\" {};", flags, edit.words[1], value);
}

class Applier {
 public:
  Applier(scene::Document& document, const Node& reference, const scene::Units& units,
          std::string_view outer)
      : document_(document), units_(units), outer_(outer) {
    if (const auto data = scene::referenceData(reference))
      for (const auto& each : data->fields.members)
        if (const auto node = each.lock()) byName_[node->name()].push_back(node.get());
  }

  AppliedEdits run(std::span<const ReferenceEdit> edits) {
    for (const ReferenceEdit& edit : edits)
      if (!apply(edit)) result_.failed.push_back(edit);
    return std::move(result_);
  }

 private:
  bool apply(const ReferenceEdit& edit) {
    switch (edit.kind) {
      case ReferenceEdit::Parent:
        return reparent(edit);
      case ReferenceEdit::AddAttr:
      case ReferenceEdit::SetAttr:
        return write(edit);
      case ReferenceEdit::Disconnect:
        return disconnect(edit);
      case ReferenceEdit::DeleteAttr:
        return deleteAttribute(edit);
      case ReferenceEdit::Connect:
        return connect(edit);
      default:
        return false;
    }
  }

  /// A node of the file; by its path, or by its name where it has been moved since.
  Node* find(std::string_view written) {
    const std::string path = within(outer_, written);
    const std::string_view leaf = std::string_view(path).substr(path.rfind('|') + 1);
    const auto named = byName_.find(leaf);
    if (named != byName_.end() && named->second.size() == 1) return named->second.front();
    auto found = document_.node(path);
    return found ? *found : nullptr;
  }
  Plug findPlugOf(std::string_view written) {
    const auto [name, path] = splitPlug(written);
    Node* node = find(name);
    return node ? findEnd(*node, path, 0) : Plug();
  }

  bool write(const ReferenceEdit& edit) {
    const std::string statement = statementOf(edit);
    Node* node = statement.empty() ? nullptr : find(edit.words[0]);
    if (!node) return false;
    const std::string head = fmt::format("currentUnit -l {} -a {} -t {};\nselect -ne x;\n",
                                         scene::linearUnitName(units_.linear, true),
                                         scene::angularUnitName(units_.angular, true), units_.time);
    const auto file = parseMa(
        head + (edit.kind == ReferenceEdit::SetAttr ? withFlagsInFront(edit) : statement), "edit");
    if (!file || file->nodes.empty()) return false;
    bool isUsed = true;
    MaAttributes attributes(document_, units_,
                            [&](const MaAttributes::Unused&) { isUsed = false; });
    attributes.apply(*node, file->nodes.front().lines);
    attributes.lock();
    return isUsed;
  }

  bool reparent(const ReferenceEdit& edit) {
    if (edit.words.size() < 2) return false;
    Node* child = find(edit.words[0]);
    const bool toWorld = edit.words[1].empty() || edit.words[1] == "|";
    Node* parent = nullptr;
    if (!toWorld) {
      auto found = document_.node(within(outer_, edit.words[1]));
      if (!found) return false;
      parent = *found;
    }
    if (!child || !scene::isDagNode(*child)) return false;
    if (scene::dagLinks(*child).parents.front() == parent) return true;
    return static_cast<bool>(document_.reparent(scene::firstPath(*child), parent));
  }

  bool disconnect(const ReferenceEdit& edit) {
    if (edit.words.size() < 2) return false;
    const Plug destination = findPlugOf(edit.words[1]);
    if (destination.isNull()) return false;
    const Plug source = document_.graph().source(destination);
    return source.isNull() || document_.graph().disconnect(source, destination);
  }

  bool deleteAttribute(const ReferenceEdit& edit) {
    Node* node = edit.words.size() < 2 ? nullptr : find(edit.words[0]);
    const dg::Attribute* attribute = node ? node->findAttribute(edit.words[1]) : nullptr;
    return attribute && document_.graph().removeAttribute(*node, attribute);
  }

  bool connect(const ReferenceEdit& edit) {
    // The first word is the reference node; place holders follow the plugs.
    if (edit.words.size() < 3) return false;
    if (edit.form == 3 || edit.form == 4) {
      const bool leavesFile = edit.form == 3;
      const Plug plug = findPlugOf(edit.words[leavesFile ? 1 : 2]);
      const int number = placeHolderNumber(splitPlug(edit.words[leavesFile ? 2 : 1]).second);
      if (plug.isNull() || number < 0) return false;
      result_.placeHolders[number] = plug;
      return true;
    }
    const Plug source = findPlugOf(edit.words[1]), destination = findPlugOf(edit.words[2]);
    if (source.isNull() || destination.isNull()) return false;
    if (document_.graph().source(destination) == source) return true;
    return static_cast<bool>(document_.graph().connect(source, destination, true));
  }

  scene::Document& document_;
  scene::Units units_;
  std::string outer_;
  std::map<std::string, std::vector<Node*>, std::less<>> byName_;
  AppliedEdits result_;
};

}  // namespace

int placeHolderNumber(std::string_view path) {
  for (const std::string_view name : {"phl[", "placeHolderList["}) {
    if (!path.starts_with(name)) continue;
    int number = -1;
    const std::string_view rest = path.substr(name.size());
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error == std::errc() && number >= 0 && end != rest.data() + rest.size() && *end == ']')
      return number;
  }
  return -1;
}

std::vector<ReferenceEdit> readReferenceEdits(std::span<const MaToken> words) {
  std::vector<ReferenceEdit> edits;
  const auto isNumber = [&](std::size_t i) {
    return i < words.size() && words[i].kind == MaToken::Kind::Number;
  };
  const auto number = [&](std::size_t i) {
    int value = 0;
    std::from_chars(words[i].text.data(), words[i].text.data() + words[i].text.size(), value);
    return value;
  };
  std::size_t i = words.empty() ? 0 : 1;  // the node that all is for
  while (i + 1 < words.size()) {
    const std::string reference(words[i].text);
    if (!isNumber(i + 1)) return edits;
    const int count = number(i + 1);
    i += 2;
    for (int each = 0; each < count && isNumber(i); ++each) {
      ReferenceEdit edit;
      edit.reference = reference;
      edit.kind = number(i++);
      if (edit.kind == ReferenceEdit::Connect && isNumber(i)) edit.form = number(i++);
      while (i < words.size() && !isNumber(i)) edit.words.emplace_back(words[i++].text);
      // The name of the next block looks like a further word.
      if (each + 1 == count && i < words.size() && !edit.words.empty()) {
        edit.words.pop_back();
        --i;
      }
      edits.push_back(std::move(edit));
    }
  }
  return edits;
}

void appendReferenceEdits(std::string& out, std::string_view reference,
                          std::span<const ReferenceEdit> edits) {
  if (edits.empty()) return;
  std::vector<std::string_view> blocks;
  for (const ReferenceEdit& edit : edits)
    if (std::ranges::find(blocks, edit.reference) == blocks.end()) blocks.push_back(edit.reference);
  out += "\tsetAttr \".ed\" -type \"dataReferenceEdits\" \n\t\t";
  appendQuoted(out, reference);
  for (const std::string_view block : blocks) {
    out += "\n\t\t";
    appendQuoted(out, block);
    out += fmt::format(" {}", std::ranges::count(edits, block, &ReferenceEdit::reference));
    for (const ReferenceEdit& edit : edits) {
      if (edit.reference != block) continue;
      out += fmt::format("\n\t\t{}", edit.kind);
      if (edit.form >= 0) out += fmt::format(" {}", edit.form);
      for (const std::string& word : edit.words) {
        out += ' ';
        appendQuoted(out, word);
      }
    }
  }
  out += ";\n";
}

std::string editString(const ReferenceEdit& edit) {
  const auto word = [&](std::size_t i) { return i < edit.words.size() ? edit.words[i] : ""; };
  const auto trimmed = [](const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : text.substr(first);
  };
  switch (edit.kind) {
    case ReferenceEdit::Parent:
      return fmt::format("parent {}{} {}", trimmed(word(2)), word(0), word(1));
    case ReferenceEdit::AddAttr:
      return fmt::format("addAttr {} -sn {} -ln {} {}", trimmed(word(3)), word(2), word(1),
                         word(0));
    case ReferenceEdit::SetAttr:
      return fmt::format("setAttr {}.{} {}", word(0), word(1), trimmed(word(2)));
    case ReferenceEdit::Disconnect:
      return fmt::format("disconnectAttr {} {}", word(0), word(1));
    case ReferenceEdit::DeleteAttr:
      return fmt::format("deleteAttr {}.{}", word(0), word(1));
    case ReferenceEdit::Connect:
      return fmt::format("connectAttr {} {}", word(1), word(2));
    default:
      return fmt::format("{}", fmt::join(edit.words, " "));
  }
}

std::vector<std::string> editTargets(const ReferenceEdit& edit) {
  const auto word = [&](std::size_t i) { return i < edit.words.size() ? edit.words[i] : ""; };
  switch (edit.kind) {
    case ReferenceEdit::Parent:
      return {word(0)};
    case ReferenceEdit::AddAttr:
    case ReferenceEdit::SetAttr:
    case ReferenceEdit::DeleteAttr:
      return {word(0) + "." + word(1)};
    case ReferenceEdit::Disconnect:
      return {word(0), word(1)};
    case ReferenceEdit::Connect:
      if (edit.form == 3) return {word(1)};
      if (edit.form == 4) return {word(2)};
      return {word(1), word(2)};
    default:
      return {};
  }
}

AppliedEdits applyReferenceEdits(scene::Document& document, Node& reference,
                                 std::span<const ReferenceEdit> edits, const scene::Units& units,
                                 std::string_view outer) {
  return Applier(document, reference, units, outer).run(edits);
}

}  // namespace host::io
