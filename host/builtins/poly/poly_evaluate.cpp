#include <algorithm>
#include <set>

#include "host/builtins/common/command.h"
#include "host/math/box.h"
#include "host/mesh/shells.h"
#include "host/mesh/triangulate.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;

namespace {

using math::Vec3;
using scene::ComponentType;

/// Twice the area vector of a face; `matrix` brings its points where they are measured.
double faceArea(const mesh::Mesh& mesh, FaceId face, const math::Matrix4* matrix) {
  Vec3 sum;
  const auto at = [&](VertexId v) {
    return matrix ? math::transformPoint(mesh.point(v), *matrix) : mesh.point(v);
  };
  const auto loop = mesh.faceVertices(face);
  const Vec3 origin = at(loop[0]);
  for (std::size_t i = 1; i + 1 < loop.size(); ++i)
    sum += math::cross(at(loop[i]) - origin, at(loop[i + 1]) - origin);
  return 0.5 * math::length(sum);
}

double uvFaceArea(const mesh::Mesh& mesh, FaceId face, int set) {
  double sum = 0;
  const auto& points = mesh.uvSet(set).points;
  const CornerId first = mesh.firstCorner(face);
  const Index size = mesh.faceSize(face);
  for (Index i = 0; i < size; ++i) {
    const UvId a = mesh.cornerUv(set, first + i), b = mesh.cornerUv(set, first + (i + 1) % size);
    if (a == kNone || b == kNone) return 0;
    const math::Vec2f p = points[at(a)], q = points[at(b)];
    sum += double{p.u} * q.v - double{q.u} * p.v;
  }
  return std::abs(sum) * 0.5;
}

template <AnyId Id>
std::vector<Id> allOf(const mesh::Mesh& mesh) {
  return copyIds<Id>(componentIds(mesh, scene::Component::all(mesh::kTypeOf<Id>)));
}

/// Several meshes are added up, as when a group of objects is selected.
class Evaluation {
 public:
  Evaluation(std::vector<MeshItem> items, const ParsedArgs& args, const scene::Units& units)
      : items_(std::move(items)), args_(args), units_(units) {}

  CommandResult answer(std::string_view what) {
    if (what == "vertex") return count([](const MeshItem& i) { return i.mesh.vertexCount(); });
    if (what == "edge") return count([](const MeshItem& i) { return i.mesh.edgeCount(); });
    if (what == "face") return count([](const MeshItem& i) { return i.mesh.faceCount(); });
    if (what == "triangle")
      return count([](const MeshItem& i) { return i.mesh.cornerCount() - 2 * i.mesh.faceCount(); });
    if (what == "shell")
      return count([](const MeshItem& i) { return mesh::findShells(i.mesh).count; });
    if (what == "uvcoord")
      return count([this](const MeshItem& i) {
        return static_cast<Index>(i.mesh.uvSet(uvSet(i.mesh)).points.size());
      });
    if (what == "uvShell")
      return count(
          [this](const MeshItem& i) { return mesh::findUvShells(i.mesh, uvSet(i.mesh)).count; });
    if (what == "vertexComponent") return selected(ComponentType::Vertex);
    if (what == "edgeComponent") return selected(ComponentType::Edge);
    if (what == "faceComponent") return selected(ComponentType::Face);
    if (what == "uvComponent") return selected(ComponentType::Uv);
    if (what == "triangleComponent") return selectedTriangles();
    return measure(what);
  }

 private:
  template <class Count>
  CommandResult count(const Count& each) const {
    Index sum = 0;
    for (const MeshItem& item : items_) sum += each(item);
    return mel::Value(sum);
  }

  CommandResult measure(std::string_view what) const {
    const double unit = units_.toCentimeters(1.0);
    if (what == "area") return mel::Value(area(false) / (unit * unit));
    if (what == "worldArea") return mel::Value(area(true) / (unit * unit));
    if (what == "faceArea" || what == "worldFaceArea")
      return faceAreas(what == "worldFaceArea", unit * unit);
    if (what == "worldUVArea") return mel::Value(coveredArea() / (unit * unit));
    if (what == "activeShells") return activeShells();
    if (what == "uvArea" || what == "uvFaceArea") return uvAreas(what == "uvFaceArea");
    if (what == "boundingBox" || what == "boundingBoxComponent")
      return box(what == "boundingBoxComponent");
    if (what == "boundingBox2d" || what == "boundingBoxComponent2d")
      return uvBox(what == "boundingBoxComponent2d");
    if (what == "uvShellIds") return uvShellIds();
    if (what == "uvsInShell" || what == "activeUVShells")
      return activeUvShells(what == "uvsInShell");
    return fail("polyEvaluate: '-{}' can't be answered.", what);
  }

  [[nodiscard]] int uvSet(const mesh::Mesh& mesh) const {
    return args_.has("uvSetName") ? mesh.findUvSet(args_.text("uvSetName")) : mesh.currentUvSet();
  }

  [[nodiscard]] std::vector<Index> own(const MeshItem& item, ComponentType type) const {
    for (const scene::Component& component : item.components)
      if (component.type() == type) return componentIds(item.mesh, component);
    return {};
  }

  CommandResult selected(ComponentType type) const {
    return count([&](const MeshItem& i) { return static_cast<Index>(own(i, type).size()); });
  }

  CommandResult selectedTriangles() const {
    return count([&](const MeshItem& i) {
      Index sum = 0;
      for (const FaceId f : own(i, ComponentType::Face)) sum += i.mesh.faceSize(f) - 2;
      return sum;
    });
  }

  [[nodiscard]] double area(bool isWorld) const {
    double sum = 0;
    for (const MeshItem& item : items_) {
      const math::Matrix4 matrix = item.path.inclusiveMatrix();
      for (FaceId f = 0; f < item.mesh.faceCount(); ++f)
        sum += faceArea(item.mesh, f, isWorld ? &matrix : nullptr);
    }
    return sum;
  }

  /// The area in the world of the faces that have UVs: what the map's own area stands for.
  [[nodiscard]] double coveredArea() const {
    double sum = 0;
    for (const MeshItem& item : items_) {
      const math::Matrix4 matrix = item.path.inclusiveMatrix();
      for (FaceId f = 0; f < item.mesh.faceCount(); ++f)
        if (item.mesh.cornerUv(uvSet(item.mesh), item.mesh.firstCorner(f)) != kNone)
          sum += faceArea(item.mesh, f, &matrix);
    }
    return sum;
  }

  /// The shells of faces that the components touch.
  CommandResult activeShells() const {
    mel::IntArray active;
    for (const MeshItem& item : items_) {
      const mesh::Shells shells = mesh::findShells(item.mesh);
      std::set<Index> touched;
      for (const FaceId f : item.ids(ComponentType::Face)) touched.insert(shells.ofFace[at(f)]);
      active.insert(active.end(), touched.begin(), touched.end());
    }
    return mel::Value(std::move(active));
  }

  CommandResult faceAreas(bool isWorld, double unit) const {
    mel::FloatArray areas;
    for (const MeshItem& item : items_) {
      const math::Matrix4 matrix = item.path.inclusiveMatrix();
      for (const FaceId f : item.ids(ComponentType::Face))
        areas.push_back(faceArea(item.mesh, f, isWorld ? &matrix : nullptr) / unit);
    }
    return mel::Value(std::move(areas));
  }

  CommandResult uvAreas(bool perFace) const {
    mel::FloatArray areas;
    double sum = 0;
    for (const MeshItem& item : items_) {
      const std::vector<FaceId> faces = perFace ? item.idsOf<FaceId>() : allOf<FaceId>(item.mesh);
      for (const FaceId f : faces) {
        const double one = uvFaceArea(item.mesh, f, uvSet(item.mesh));
        sum += one;
        if (perFace) areas.push_back(one);
      }
    }
    if (!perFace) return mel::Value(sum);
    return mel::Value(std::move(areas));
  }

  CommandResult box(bool ofComponents) const {
    math::Box bounds;
    for (const MeshItem& item : items_) {
      const math::Matrix4 matrix = item.path.inclusiveMatrix();
      if (ofComponents && item.isObject()) continue;
      const std::vector<VertexId> vertices =
          ofComponents ? item.vertices() : allOf<VertexId>(item.mesh);
      for (const VertexId v : vertices)
        bounds.add(math::transformPoint(item.mesh.point(v), matrix));
    }
    if (bounds.isEmpty()) return mel::Value(mel::FloatArray(6, 0.0));
    mel::FloatArray pairs;
    for (int axis = 0; axis < 3; ++axis)
      for (const double x : {bounds.min[axis], bounds.max[axis]})
        pairs.push_back(units_.fromCentimeters(x));
    return mel::Value(std::move(pairs));
  }

  CommandResult uvBox(bool ofComponents) const {
    math::Box bounds;
    for (const MeshItem& item : items_) {
      const auto& points = item.mesh.uvSet(uvSet(item.mesh)).points;
      const std::vector<UvId> ids = ofComponents ? item.idsOf<UvId>() : allOf<UvId>(item.mesh);
      for (const UvId id : ids) {
        const math::Vec2f uv = points[at(id)];
        bounds.add(Vec3(uv.u, uv.v, 0));
      }
    }
    if (bounds.isEmpty()) return mel::Value(mel::FloatArray(4, 0.0));
    return mel::Value(mel::FloatArray{bounds.min.x, bounds.max.x, bounds.min.y, bounds.max.y});
  }

  CommandResult uvShellIds() const {
    mel::IntArray ids;
    for (const MeshItem& item : items_) {
      const mesh::UvShells shells = mesh::findUvShells(item.mesh, uvSet(item.mesh));
      for (const UvId uv : item.ids(ComponentType::Uv)) ids.push_back(shells.ofUv[at(uv)]);
    }
    return mel::Value(std::move(ids));
  }

  /// The shells that the components touch, or the UVs of the shell with the given number.
  CommandResult activeUvShells(bool wantsUvs) const {
    mel::IntArray active;
    scene::SelectionList list;
    for (const MeshItem& item : items_) {
      const mesh::UvShells shells = mesh::findUvShells(item.mesh, uvSet(item.mesh));
      if (wantsUvs) {
        std::vector<UvId> uvs;
        for (std::size_t uv = 0; uv < shells.ofUv.size(); ++uv)
          if (shells.ofUv[uv] == args_.integer("uvsInShell")) uvs.push_back(static_cast<UvId>(uv));
        list.add(item.path, scene::Component::of(uvs));
        continue;
      }
      std::set<Index> touched;
      for (const UvId uv : item.ids(ComponentType::Uv)) touched.insert(shells.ofUv[at(uv)]);
      touched.erase(kNone);
      active.insert(active.end(), touched.begin(), touched.end());
    }
    if (wantsUvs) return toValue(list.names());
    return mel::Value(std::move(active));
  }

  std::vector<MeshItem> items_;
  const ParsedArgs& args_;
  const scene::Units& units_;
};

/// One line a count, as without any flag.
std::string summary(Evaluation& evaluation) {
  std::string text = "Polyset counts:\n";
  for (const std::string_view what : {"vertex", "edge", "face", "uvcoord", "triangle", "shell"}) {
    const CommandResult value = evaluation.answer(what);
    text += fmt::format("   {}: {}\n", what, value ? value->intValue() : 0);
  }
  return text;
}

CommandResult polyEvaluate(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return mel::Value("Nothing counted : no polygonal object is selected.");
  for (const MeshItem& item : *items)
    if (args.has("uvSetName") && item.mesh.findUvSet(args.text("uvSetName")) < 0)
      return fail(ErrorKind::NotFound, "polyEvaluate: '{}' has no UV set '{}'.",
                  item.path.partialName(), args.text("uvSetName"));
  Evaluation evaluation(std::move(*items), args, context.document.units());
  std::vector<mel::Value> answers;
  for (const cmd::ParsedArgs::FlagUse& use : args.flagUses()) {
    const std::string& what = use.spec->longName;
    if (what == "format" || what == "uvSetName" || what == "accurateEvaluation") continue;
    auto answer = evaluation.answer(what);
    if (!answer) return answer;
    answers.push_back(std::move(*answer));
  }
  if (answers.empty()) return mel::Value(summary(evaluation));
  if (answers.size() == 1) return std::move(answers.front());
  const bool areWhole =
      std::all_of(answers.begin(), answers.end(), [](const mel::Value& v) { return v.isInt(); });
  mel::IntArray whole;
  mel::FloatArray reals;
  for (const mel::Value& answer : answers) {
    if (answer.isInt()) whole.push_back(answer.intValue());
    if (answer.isInt() || answer.isFloat()) reals.push_back(answer.toFloat().value_or(0));
    if (answer.type() == mel::Type::FloatArray)
      reals.insert(reals.end(), answer.floatArray().begin(), answer.floatArray().end());
  }
  if (areWhole) return mel::Value(std::move(whole));
  return mel::Value(std::move(reals));
}

}  // namespace

void registerPolyEvaluate(CommandRegistry& registry) {
  defineQuery(registry, "polyEvaluate",
              Syntax()
                  .flag("v", "vertex")
                  .flag("e", "edge")
                  .flag("f", "face")
                  .flag("t", "triangle")
                  .flag("s", "shell")
                  .flag("uv", "uvcoord")
                  .flag("us", "uvShell")
                  .flag("vc", "vertexComponent")
                  .flag("ec", "edgeComponent")
                  .flag("fc", "faceComponent")
                  .flag("tc", "triangleComponent")
                  .flag("uvc", "uvComponent")
                  .flag("a", "area")
                  .flag("wa", "worldArea")
                  .flag("fa", "faceArea")
                  .flag("wfa", "worldFaceArea")
                  .flag("uva", "uvArea")
                  .flag("ufa", "uvFaceArea")
                  .flag("b", "boundingBox")
                  .flag("bc", "boundingBoxComponent")
                  .flag("b2", "boundingBox2d")
                  .flag("bc2", "boundingBoxComponent2d")
                  .flag("usi", "uvShellIds")
                  .flag("wua", "worldUVArea")
                  .flag("as", "activeShells")
                  .flag("aus", "activeUVShells")
                  .flag("uis", "uvsInShell", {ArgType::Int})
                  .flag("uvs", "uvSetName", {ArgType::String})
                  .flag("ae", "accurateEvaluation")
                  .flag("fmt", "format")
                  .objects(0, -1, true),
              polyEvaluate);
}

}  // namespace host::builtins
