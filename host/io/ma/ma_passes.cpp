#include "host/io/ma/ma_passes.h"

#include <charconv>
#include <unordered_set>

#include "host/io/ma/ma_plugs.h"

namespace host::io {
namespace {

using dg::Node;
using dg::Plug;

bool carriesMesh(const Plug& plug) {
  return plug && plug.attribute()->type == dg::AttributeType::Typed &&
         plug.attribute()->dataType == "mesh";
}

/// The last index in a path, 0 without one: outputs and inputs of the same number belong together.
int lastIndex(std::string_view path) {
  const std::size_t open = path.rfind('[');
  int index = 0;
  if (open != std::string_view::npos)
    std::from_chars(path.data() + open + 1, path.data() + path.size(), index);
  return index;
}
int firstIndex(std::string_view path) {
  const std::size_t open = path.find('[');
  return open == std::string_view::npos ? 0 : lastIndex(path.substr(0, path.find(']') + 1));
}

class Passing {
 public:
  Passing(scene::Document& document, MaKept& kept)
      : graph_(document.graph()), kept_(kept), count_(kept.connections.size()) {}

  std::unordered_map<std::string, bool> run() {
    for (std::size_t i = 0; i < count_; ++i)
      if (const auto to = kept_.connections[i].destination.lock()) into_[to.get()].push_back(i);
    for (std::size_t i = 0; i < count_; ++i) connectBehind(i);
    return std::move(letThrough_);
  }

 private:
  [[nodiscard]] bool isUnknown(const Node& node) const {
    const MaKept::Node* kept = kept_.find(node);
    return kept && !kept->type.empty();
  }

  void connectBehind(std::size_t at) {
    const MaKept::Connection& out = kept_.connections[at];
    const auto from = out.source.lock(), to = out.destination.lock();
    if (!from || !to || !isUnknown(*from) || isUnknown(*to)) return;
    const Plug destination = findEnd(*to, out.destinationPath, 0);
    if (!carriesMesh(destination) || graph_.source(destination)) return;
    std::unordered_set<const Node*> seen;
    const Plug source = meshInto(*from, lastIndex(out.sourcePath), seen);
    if (!source || !graph_.connect(source, destination)) return;
    kept_.passes.push_back({source.node()->weak_from_this(), to, source, destination, at});
    for (const Node* node : seen) letThrough_[kept_.find(*node)->type] = true;
  }

  /// The mesh that goes into an unknown node, at the input of that number if there are several.
  Plug meshInto(const Node& node, int number, std::unordered_set<const Node*>& seen) {
    if (!seen.insert(&node).second) return {};
    Plug first;
    for (const std::size_t i : into_[&node]) {
      const MaKept::Connection& in = kept_.connections[i];
      const auto from = in.source.lock();
      if (!from) continue;
      const Plug mesh = isUnknown(*from) ? meshInto(*from, lastIndex(in.sourcePath), seen)
                                         : objectMesh(findEnd(*from, in.sourcePath, 0));
      if (!mesh) continue;
      if (firstIndex(in.destinationPath) == number) return mesh;
      if (!first) first = mesh;
    }
    return first;
  }

  /// A mesh in object space: deformers take their input in world space and give it back in the
  /// object's.
  [[nodiscard]] Plug objectMesh(Plug plug) const {
    if (!carriesMesh(plug)) return {};
    for (Plug above = plug; above;) {
      if (above.attribute()->longName == "worldMesh") return above.node()->plug("outMesh");
      const Plug input = above.node()->plug("inputGeometry");
      above = above.node()->type().name == "groupParts" && input ? graph_.source(input) : Plug();
    }
    return plug;
  }

  dg::Graph& graph_;
  MaKept& kept_;
  std::size_t count_;
  std::unordered_map<const Node*, std::vector<std::size_t>> into_;
  std::unordered_map<std::string, bool> letThrough_;
};

}  // namespace

std::unordered_map<std::string, bool> passMeshesThrough(scene::Document& document, MaKept& kept) {
  return Passing(document, kept).run();
}

Plug currentEnd(const dg::Graph& graph, const MaKept::Pass& pass) {
  const auto from = pass.sourceNode.lock(), to = pass.destinationNode.lock();
  if (!from || !to || !from->isAlive() || !to->isAlive()) return {};
  Plug end = pass.destination;
  for (int steps = 0; end && steps < 10000; ++steps) {
    const Plug source = graph.source(end);
    if (source == pass.source) return end;
    if (!source) return {};
    end = Plug();
    for (const char* input : {"inputPolymesh", "inputGeometry", "inMesh"})
      if (const Plug next = source.node()->plug(input)) {
        end = next;
        break;
      }
  }
  return {};
}

}  // namespace host::io
