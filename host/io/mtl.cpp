#include "host/io/mtl.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>

#include "host/io/whole_file.h"

namespace host::io {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

std::string_view nextWord(std::string_view& rest) {
  const std::size_t begin = std::min(rest.find_first_not_of(kBlanks), rest.size());
  const std::size_t end = std::min(rest.find_first_of(kBlanks, begin), rest.size());
  const std::string_view word = rest.substr(begin, end - begin);
  rest = rest.substr(end);
  return word;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  const std::size_t end = text.find_last_not_of(kBlanks);
  return end == std::string_view::npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

std::optional<double> number(std::string_view word) {
  double value = 0;
  if (!word.empty() && word.front() == '+') word.remove_prefix(1);
  const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (status != std::errc() || end != word.data() + word.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

/// The path behind the options of a map statement, which start with a dash and take one to three
/// words that are numbers, or one that is not.
std::string mapPath(std::string_view rest) {
  rest = trimmed(rest);
  while (rest.size() > 1 && rest.front() == '-' && !number(rest.substr(0, rest.find(' ')))) {
    std::string_view after = rest;
    (void)nextWord(after);
    std::string_view ahead = after;
    const std::string_view first = nextWord(ahead);
    after = ahead;
    if (number(first))
      for (int i = 0; i < 2; ++i) {
        ahead = after;
        if (!number(nextWord(ahead))) break;
        after = ahead;
      }
    rest = trimmed(after);
  }
  std::string path(rest);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

class Parser {
 public:
  Parser(std::string_view text, const std::string& name) : text_(text), name_(name) {}

  Result<MtlLibrary> run() {
    while (!text_.empty()) {
      ++line_;
      const std::size_t end = std::min(text_.find('\n'), text_.size());
      const std::string_view line = trimmed(text_.substr(0, end));
      text_ = text_.substr(std::min(end + 1, text_.size()));
      if (line.empty() || line.front() == '#') continue;
      HOST_TRY(statement(line));
    }
    return std::move(library_);
  }

 private:
  Result<void> statement(std::string_view line) {
    std::string_view rest = line;
    std::string word(nextWord(rest));
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (word == "newmtl") {
      begin(std::string(trimmed(rest)));
      return {};
    }
    if (!current()) {
      ++library_.warnings["statement before the first material"];
      return {};
    }
    MtlMaterial& material = *current();
    if (word == "kd") return color(rest, material.diffuse);
    if (word == "ka") return color(rest, material.ambient);
    if (word == "ks") return color(rest, material.specular);
    if (word == "ke") return color(rest, material.emission);
    if (word == "ns") return real(rest, material.shininess);
    if (word == "d") return opacity(rest, material, false);
    if (word == "tr") return opacity(rest, material, true);
    if (word == "map_kd") material.diffuseMap = mapPath(rest);
    if (word == "map_d") material.opacityMap = mapPath(rest);
    return {};
  }

  void begin(const std::string& name) {
    const auto same = std::find_if(library_.materials.begin(), library_.materials.end(),
                                   [&](const MtlMaterial& each) { return each.name == name; });
    MtlMaterial fresh;
    fresh.name = name;
    if (same == library_.materials.end()) {
      current_ = library_.materials.size();
      library_.materials.push_back(std::move(fresh));
      return;
    }
    ++library_.warnings["material defined twice"];
    current_ = static_cast<std::size_t>(same - library_.materials.begin());
    *same = std::move(fresh);
  }

  MtlMaterial* current() {
    return current_ < library_.materials.size() ? &library_.materials[current_] : nullptr;
  }

  Result<void> real(std::string_view rest, double& value) {
    const std::string_view word = nextWord(rest);
    const auto read = number(word);
    if (!read) return fail("{}:{}: '{}' is no number", name_, line_, word);
    value = *read;
    return {};
  }

  Result<void> opacity(std::string_view rest, MtlMaterial& material, bool isTransparency) {
    std::string_view ahead = rest;
    if (nextWord(ahead) == "-halo") rest = ahead;
    double value = 1;
    HOST_TRY(real(rest, value));
    material.opacity = std::clamp(isTransparency ? 1 - value : value, 0.0, 1.0);
    return {};
  }

  /// Three numbers, or one for all; a spectral file or CIE values are passed over.
  Result<void> color(std::string_view rest, math::Vec3& value) {
    std::string_view ahead = rest;
    const std::string_view first = nextWord(ahead);
    if (first == "spectral" || first == "xyz") {
      ++library_.warnings["colour that is not red, green, blue"];
      return {};
    }
    HOST_TRY(real(rest, value.x));
    value.y = value.z = value.x;
    if (trimmed(ahead).empty()) return {};
    HOST_TRY(real(ahead, value.y));
    (void)nextWord(ahead);
    return real(ahead, value.z);
  }

  std::string_view text_;
  const std::string& name_;
  std::size_t line_ = 0, current_ = static_cast<std::size_t>(-1);
  MtlLibrary library_;
};

void append(std::string& out, std::string_view word, std::initializer_list<double> values) {
  out += word;
  for (const double value : values) {
    char digits[32];
    const float single = static_cast<float>(std::isfinite(value) ? value : 0);
    const auto [end, status] = std::to_chars(digits, digits + sizeof digits, single);
    (void)status;  // 32 characters hold any float
    out += ' ';
    out.append(digits, end);
  }
  out += '\n';
}

std::string oneLine(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ') c = '_';
  return text;
}

}  // namespace

Result<MtlLibrary> parseMtl(std::string_view text, const std::string& name) {
  return Parser(text, name).run();
}

Result<MtlLibrary> readMtl(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file.error()));
  return parseMtl(file->text(), path);
}

std::string formatMtl(const std::vector<MtlMaterial>& materials) {
  std::string out;
  for (const MtlMaterial& m : materials) {
    if (!out.empty()) out += '\n';
    out += "newmtl " + oneLine(m.name) + "\n";
    const bool hasHighlights = m.specular.x > 0 || m.specular.y > 0 || m.specular.z > 0;
    out += hasHighlights ? "illum 2\n" : "illum 1\n";
    append(out, "Ka", {m.ambient.x, m.ambient.y, m.ambient.z});
    append(out, "Kd", {m.diffuse.x, m.diffuse.y, m.diffuse.z});
    if (hasHighlights) {
      append(out, "Ks", {m.specular.x, m.specular.y, m.specular.z});
      append(out, "Ns", {m.shininess});
    }
    if (m.emission.x > 0 || m.emission.y > 0 || m.emission.z > 0)
      append(out, "Ke", {m.emission.x, m.emission.y, m.emission.z});
    append(out, "d", {m.opacity});
    if (!m.diffuseMap.empty()) out += "map_Kd " + oneLine(m.diffuseMap) + "\n";
    if (!m.opacityMap.empty()) out += "map_d " + oneLine(m.opacityMap) + "\n";
  }
  return out;
}

bool staysInFolder(const std::string& path) {
  const std::filesystem::path given(path);
  const bool hasDrive = path.size() > 1 && path[1] == ':';
  return !path.empty() && given.is_relative() && !hasDrive &&
         std::none_of(given.begin(), given.end(), [](const auto& part) { return part == ".."; });
}

bool looksLikePicture(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  constexpr std::array<std::string_view, 9> kPictures{".png", ".jpg", ".jpeg", ".tif", ".tiff",
                                                      ".tga", ".bmp", ".iff",  ".exr"};
  return std::find(kPictures.begin(), kPictures.end(), extension) != kPictures.end();
}

}  // namespace host::io
