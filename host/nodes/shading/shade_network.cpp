#include "host/nodes/shading/shade_network.h"

#include <algorithm>
#include <bit>

namespace host::nodes {

namespace {

using Source = ShadeNetwork::Source;

double numberOf(const Result<dg::Value>& value) {
  if (!value) return 0;
  if (const auto* real = std::get_if<double>(&*value)) return *real;
  if (const auto* whole = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*whole);
  return 0;
}

/// The leaf of a compound that stands at the same place as `leaf` does in its own.
const dg::Attribute* counterpart(const dg::Attribute* compound, const dg::Attribute* leaf,
                                 const dg::Attribute* of) {
  const auto from = leavesOf(of), to = leavesOf(compound);
  const auto at =
      static_cast<std::size_t>(std::find(from.begin(), from.end(), leaf) - from.begin());
  return at < to.size() ? to[at] : nullptr;
}

class Digest {
 public:
  void add(std::uint64_t word) {
    hash_ = (hash_ ^ word) * 1099511628211ULL;
    hash_ ^= hash_ >> 29;
  }
  void add(const Source& source) {
    add(static_cast<std::uint64_t>(source.kind) << 60 | std::uint64_t{source.entry} << 8 |
        source.output);
    add(std::bit_cast<std::uint64_t>(source.constant));
  }
  [[nodiscard]] std::uint64_t value() const { return hash_; }

 private:
  std::uint64_t hash_ = 1469598103934665603ULL;
};

/// The coordinates of a texture or placement that nobody feeds: those of the surface.
Source::Kind surfaceCoordinate(const dg::Attribute* leaf) {
  if (leaf->longName == "uCoord") return Source::Kind::U;
  if (leaf->longName == "vCoord") return Source::Kind::V;
  return Source::Kind::Constant;
}

}  // namespace

Source ShadeNetwork::readValue(const dg::Plug& leaf) const {
  Source source;
  source.constant = numberOf(leaf.node()->graph().get(leaf));
  return source;
}

Source ShadeNetwork::addNumber(const dg::Plug& plug) {
  return resolve(plug);
}

ShadeNetwork::Color ShadeNetwork::addColor(const dg::Plug& plug) {
  return {resolve(plug.child(0)), resolve(plug.child(1)), resolve(plug.child(2))};
}

Source ShadeNetwork::resolve(const dg::Plug& leaf) {
  dg::Graph& graph = leaf.node()->graph();
  if (const dg::Plug direct = graph.source(leaf)) return fromSource(direct, leaf);
  const dg::Plug above = leaf.parent();
  if (above)
    if (const dg::Plug whole = graph.source(above)) {
      const dg::Attribute* part =
          counterpart(whole.attribute(), leaf.attribute(), above.attribute());
      if (part) return fromSource(part == whole.attribute() ? whole : whole.child(part), leaf);
    }
  Source surface;
  surface.kind = surfaceCoordinate(leaf.attribute());
  if (surface.kind != Source::Kind::Constant) return surface;
  // An output is fed by its own node.
  const bool isOutput = !leaf.attribute()->writable && shadeKindOf(leaf.node()->type());
  return isOutput ? fromSource(leaf, leaf) : readValue(leaf);
}

Source ShadeNetwork::fromSource(const dg::Plug& source, const dg::Plug& leaf) {
  dg::Node& node = *source.node();
  const ShadeKind* kind = shadeKindOf(node.type());
  if (!kind) return readValue(leaf);
  const auto at = entryOf(node, *kind);
  if (!at) return {};  // a cycle
  const Entry& entry = entries_[*at];
  const auto found = std::find(entry.outputs.begin(), entry.outputs.end(), source.attribute());
  if (found == entry.outputs.end()) return readValue(leaf);
  Source result;
  result.kind = Source::Kind::Output;
  result.entry = static_cast<std::uint32_t>(*at);
  result.output = static_cast<std::uint32_t>(found - entry.outputs.begin());
  const auto areConstant = [](const std::vector<Source>& all) {
    return std::all_of(all.begin(), all.end(), [](const Source& s) { return isConstant(s); });
  };
  if (areConstant(entry.inputs) && std::all_of(entry.rows.begin(), entry.rows.end(), areConstant))
    result = {.constant = entry.out[result.output]};
  return result;
}

std::optional<std::size_t> ShadeNetwork::entryOf(dg::Node& node, const ShadeKind& kind) {
  for (const auto& [known, at] : done_)
    if (known == &node) return at;
  if (std::find(open_.begin(), open_.end(), &node) != open_.end()) return std::nullopt;
  open_.push_back(&node);
  Entry entry;
  entry.kind = &kind;
  entry.node = &node;
  dg::Graph& graph = node.graph();
  for (const std::string& name : kind.inputs) {
    const dg::Plug plug = node.plug(name);
    for (const dg::Attribute* leaf : leavesOf(plug.attribute()))
      entry.inputs.push_back(resolve(leaf == plug.attribute() ? plug : plug.child(leaf)));
  }
  for (const std::string& name : kind.arrays) {
    std::vector<Source>& row = entry.rows.emplace_back();
    const dg::Plug array = node.plug(name);
    for (const Index index : graph.elementIndices(array)) {
      const dg::Plug element = array.element(index);
      for (const dg::Attribute* leaf : leavesOf(array.attribute())) {
        dg::Plug plug = element;
        if (leaf != array.attribute())
          plug = leaf->parent == array.attribute() ? element.child(leaf)
                                                   : element.child(leaf->parent).child(leaf);
        row.push_back(resolve(plug));
      }
    }
  }
  for (const std::string& name : kind.outputs)
    for (const dg::Attribute* leaf : leavesOf(node.plug(name).attribute()))
      entry.outputs.push_back(leaf);
  entry.out.resize(entry.outputs.size());
  if (kind.showsPicture && findPicture_) entry.picture = findPicture_(node);
  open_.pop_back();
  evaluate(entry);
  entries_.push_back(std::move(entry));
  done_.emplace_back(&node, entries_.size() - 1);
  return entries_.size() - 1;
}

double ShadeNetwork::value(const Source& source) const {
  switch (source.kind) {
    case Source::Kind::U:
      return u_;
    case Source::Kind::V:
      return v_;
    case Source::Kind::Output:
      return entries_[source.entry].out[source.output];
    case Source::Kind::Constant:
      break;
  }
  return source.constant;
}

void ShadeNetwork::fill(Entry& entry) {
  entry.scratch.values.resize(entry.inputs.size());
  for (std::size_t i = 0; i < entry.inputs.size(); ++i)
    entry.scratch.values[i] = value(entry.inputs[i]);
  entry.scratch.rows.resize(entry.rows.size());
  for (std::size_t r = 0; r < entry.rows.size(); ++r) {
    entry.scratch.rows[r].resize(entry.rows[r].size());
    for (std::size_t i = 0; i < entry.rows[r].size(); ++i)
      entry.scratch.rows[r][i] = value(entry.rows[r][i]);
  }
  entry.scratch.picture = entry.picture.get();
}

void ShadeNetwork::evaluate(Entry& entry) {
  fill(entry);
  entry.kind->evaluate(entry.scratch, entry.out);
}

void ShadeNetwork::moveTo(double u, double v) {
  u_ = u;
  v_ = v;
  for (Entry& entry : entries_)
    if (!entry.isTaken) evaluate(entry);
}

math::Placement ShadeNetwork::placementOf(const Entry& entry) {
  const auto number = [&](std::size_t at) { return entry.inputs[at].constant; };
  const auto isOn = [&](std::size_t at) { return number(at) != 0; };
  return {.coverageU = number(2),
          .coverageV = number(3),
          .translateFrameU = number(4),
          .translateFrameV = number(5),
          .rotateFrame = number(6),
          .mirrorU = isOn(7),
          .mirrorV = isOn(8),
          .stagger = isOn(9),
          .wrapU = isOn(10),
          .wrapV = isOn(11),
          .repeatU = number(12),
          .repeatV = number(13),
          .offsetU = number(14),
          .offsetV = number(15),
          .rotateUv = number(16)};
}

std::optional<math::Placement> ShadeNetwork::takePlacement(std::vector<Source*> roots) {
  std::vector<Source*> uses = std::move(roots);
  std::optional<std::size_t> place;
  for (std::size_t e = 0; e < entries_.size(); ++e) {
    Entry& entry = entries_[e];
    if (entry.node->type().isA("place2dTexture")) {
      const bool isPlain = entry.inputs[0].kind == Source::Kind::U &&
                           entry.inputs[1].kind == Source::Kind::V &&
                           std::all_of(entry.inputs.begin() + 2, entry.inputs.end(),
                                       [](const Source& s) { return isConstant(s); });
      if (place || !isPlain) return std::nullopt;
      place = e;
      continue;
    }
    for (Source& input : entry.inputs) uses.push_back(&input);
    for (std::vector<Source>& row : entry.rows)
      for (Source& input : row) uses.push_back(&input);
  }
  if (!place) return std::nullopt;
  for (const Source* use : uses)
    if (use->kind == Source::Kind::U || use->kind == Source::Kind::V) return std::nullopt;
  for (Source* use : uses)
    if (use->kind == Source::Kind::Output && use->entry == *place)
      use->kind = use->output == 0 ? Source::Kind::U : Source::Kind::V;
  entries_[*place].isTaken = true;
  return placementOf(entries_[*place]);
}

const Picture* ShadeNetwork::plainPicture(const Color& color) const {
  for (std::uint32_t i = 0; i < 3; ++i)
    if (color[i].kind != Source::Kind::Output || color[i].output != i ||
        color[i].entry != color[0].entry)
      return nullptr;
  const Entry& entry = entries_[color[0].entry];
  if (!entry.picture || entry.inputs[0].kind != Source::Kind::U ||
      entry.inputs[1].kind != Source::Kind::V)
    return nullptr;
  // Gain 1, offset 0, not inverted: the order of a texture's balance.
  const auto is = [&](std::size_t at, double wanted) {
    return isConstant(entry.inputs[at]) && entry.inputs[at].constant == wanted;
  };
  for (std::size_t i = 0; i < 3; ++i)
    if (!is(2 + i, 1) || !is(5 + i, 0)) return nullptr;
  return is(13, 0) ? entry.picture.get() : nullptr;
}

bool ShadeNetwork::isPlainTransparency(const Color& color, const Color& transparency) const {
  if (!plainPicture(color)) return false;
  constexpr std::uint32_t kFirstTransparency = 4;
  for (std::uint32_t i = 0; i < 3; ++i)
    if (transparency[i].kind != Source::Kind::Output || transparency[i].entry != color[0].entry ||
        transparency[i].output != kFirstTransparency + i)
      return false;
  const Source& isLuminance = entries_[color[0].entry].inputs[14];
  return isConstant(isLuminance) && isLuminance.constant == 0;
}

int ShadeNetwork::pictureSide() const {
  int side = 0;
  for (const Entry& entry : entries_)
    if (entry.picture) side = std::max({side, entry.picture->width, entry.picture->height});
  return side;
}

std::uint64_t ShadeNetwork::signature(const std::vector<Source>& roots) const {
  Digest digest;
  for (const Source& root : roots) digest.add(root);
  for (const Entry& entry : entries_) {
    if (entry.isTaken) continue;
    digest.add(reinterpret_cast<std::uintptr_t>(entry.kind));
    digest.add(reinterpret_cast<std::uintptr_t>(entry.picture.get()));
    for (const Source& input : entry.inputs) digest.add(input);
    for (const std::vector<Source>& row : entry.rows) {
      digest.add(row.size());
      for (const Source& input : row) digest.add(input);
    }
  }
  return digest.value();
}

}  // namespace host::nodes
