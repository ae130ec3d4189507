// Scenes of random content against a plain comparison, value by value.
#include <random>

#include "host/scene/component.h"
#include "tests/host/io/ma/ma_fixture.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using dg::AttributeType;
using io::test::MaScene;

namespace {

class SceneMaker {
 public:
  SceneMaker(MaScene& scene, unsigned seed) : scene_(scene), random_(seed) {}

  void make() {
    const auto zoo = zoo::meshZoo();
    for (int i = 0; i < 12; ++i) {
      dg::Node* parent =
          transforms_.empty() || below(3) == 0 ? nullptr : transforms_[below(transforms_.size())];
      dg::Node& transform = scene_.make("transform", below(3) == 0 ? "same" : "node#", parent);
      transforms_.push_back(&transform);
      setTransform(transform);
      for (int k = below(3); k > 0; --k) addAttribute(transform);
      if (below(2) == 0) {
        dg::Node& shape = scene_.make("mesh", "shape#", &transform);
        shapes_.push_back(&shape);
        REQUIRE(nodes::setStoredMesh(shape, zoo[below(zoo.size())].mesh));
      }
    }
    for (int i = 0; i < 3; ++i) makeSet();
    if (!shapes_.empty() && transforms_.size() > 1)
      (void)scene_->addInstance(*shapes_.front(), transforms_.back());
  }

 private:
  template <class Size>
  Size below(Size count) {
    return static_cast<Size>(random_() % static_cast<std::uint64_t>(count));
  }
  double number() {
    const double wide = std::normal_distribution<double>(0, 100)(random_);
    return below(4) == 0 ? std::round(wide) : wide;
  }

  void setTransform(dg::Node& transform) {
    for (const char* name : {"translate", "rotate", "scale", "rotatePivot", "shear"})
      if (below(2) == 0)
        REQUIRE(scene_.graph().setVec3(transform.plug(name), {number(), number(), number()}));
    if (below(4) == 0)
      REQUIRE(scene_.graph().set(transform.plug("rotateOrder"), std::int64_t{below(6)}));
    for (const auto flag : {dg::Graph::PlugFlag::Locked, dg::Graph::PlugFlag::Keyable})
      if (below(4) == 0)
        REQUIRE(scene_.graph().setFlag(transform.plug("translate").child(below(3)), flag,
                                       flag == dg::Graph::PlugFlag::Locked));
  }

  void addAttribute(dg::Node& node) {
    const std::string name = "extra" + std::to_string(count_++);
    dg::AttributePtr attribute;
    switch (below(6)) {
      case 0:
        attribute = dg::makeTriple(name, name, AttributeType::Distance, "double3", {1, 2, 3});
        break;
      case 1:
        attribute = dg::makeAttribute(name, name, AttributeType::String);
        break;
      case 2:
        attribute = dg::makeAttribute(name, name, AttributeType::Angle, number());
        attribute->isArray = true;
        break;
      case 3:
        attribute = dg::makeTyped(name, name, "componentList");
        break;
      case 4:
        attribute =
            dg::makeCompound(name, name,
                             {dg::makeAttribute(name + "A", name + "A", AttributeType::Bool),
                              dg::makeTyped(name + "B", name + "B", "doubleArray")});
        attribute->isArray = true;
        break;
      default:
        attribute = dg::makeAttribute(name, name, AttributeType::Float, 0.1);
        attribute->minimum = -1e6;
        attribute->keyable = true;
    }
    REQUIRE(scene_.graph().addAttribute(node, attribute));
    setValues(node.plug(name));
  }

  void setValues(const dg::Plug& plug) {
    dg::Graph& graph = scene_.graph();
    if (plug.isArray()) {
      for (int k = below(4); k > 0; --k) {
        const dg::Plug element = plug.element(below(9));
        REQUIRE(graph.addElement(element));
        setValues(element);
      }
      return;
    }
    if (plug.isCompound()) {
      for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
        if (below(3) != 0) setValues(plug.child(static_cast<int>(i)));
      return;
    }
    REQUIRE(graph.set(plug, valueFor(*plug.attribute())));
  }

  dg::Value valueFor(const dg::Attribute& leaf) {
    if (leaf.type == AttributeType::String) {
      std::string text;
      for (int k = below(30); k > 0; --k) text += "ab \"\\\t\n\r;'{}(+)\xc3\xa9"[below(17)];
      return text;
    }
    if (leaf.dataType == "componentList") {
      std::vector<scene::Component> list;
      std::vector<Index> ids;
      for (int k = 1 + below(20); k > 0; --k) ids.push_back(below(40));
      list.emplace_back(scene::ComponentType::Edge, ids);
      if (below(2) == 0) list.push_back(scene::Component::all(scene::ComponentType::Face));
      return dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(list)));
    }
    if (leaf.dataType == "doubleArray") {
      std::vector<double> numbers;
      for (int k = below(40); k > 0; --k) numbers.push_back(number());
      return dg::DataPtr(std::make_shared<dg::DoubleArrayData>(std::move(numbers)));
    }
    return number();
  }

  void makeSet() {
    dg::Node& set = scene_.make("objectSet", "set#");
    scene::SelectionList members;
    for (int k = below(3); k > 0; --k)
      members.add(transforms_[below(transforms_.size())]->shared_from_this());
    if (!shapes_.empty())
      members.add(scene::firstPath(*shapes_[below(shapes_.size())]),
                  scene::Component(scene::ComponentType::Vertex, {0, 1}));
    (void)nodes::addToSet(*scene_.document, set, members);
  }

  MaScene& scene_;
  std::mt19937_64 random_;
  std::vector<dg::Node*> transforms_, shapes_;
  int count_ = 0;
};

std::vector<std::string> namesOf(const scene::SelectionList& list) {
  std::vector<std::string> names;
  for (const scene::SelectionItem& item : list.items()) {
    std::string name = item.isDag() ? item.path.fullName() : item.node->name();
    for (const scene::Component& component : item.components)
      for (const std::string& word : component.words()) name += " " + word;
    names.push_back(name);
  }
  return names;
}

/// Every stored leaf below a plug.
void collect(dg::Graph& graph, const dg::Plug& plug,
             std::vector<std::pair<std::string, dg::Value>>& all) {
  if (plug.isArray()) {
    for (const Index index : graph.elementIndices(plug)) collect(graph, plug.element(index), all);
  } else if (plug.isCompound()) {
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
      collect(graph, plug.child(static_cast<int>(i)), all);
  } else if (!graph.isDriven(plug)) {
    all.emplace_back(plug.attributePath(), graph.stored(plug));
  }
}

void checkSame(MaScene& before, MaScene& after) {
  for (const dg::NodePtr& node : before.graph().nodes()) {
    dg::Node* same = nullptr;
    for (const dg::NodePtr& each : after.graph().nodes())
      if (each->uuid() == node->uuid()) same = each.get();
    if (node->isDefault()) continue;
    CAPTURE(node->name());
    REQUIRE(same);
    CHECK(same->name() == node->name());
    std::vector<std::string> paths, samePaths;
    for (const auto& path : scene::allPaths(*node)) paths.push_back(path.fullName());
    for (const auto& path : scene::allPaths(*same)) samePaths.push_back(path.fullName());
    CHECK(samePaths == paths);
    if (nodes::isSet(*node))
      CHECK(namesOf(nodes::setMembers(*same)) == namesOf(nodes::setMembers(*node)));
    if (!node->type().isA("transform")) continue;
    std::vector<std::pair<std::string, dg::Value>> values, sameValues;
    for (const auto* attributes : {&node->type().attributes(), &node->dynamicAttributes()})
      for (const dg::AttributePtr& attribute : *attributes) {
        if (!attribute->writable || !attribute->storable) continue;
        collect(before.graph(), node->plug(attribute->longName), values);
        collect(after.graph(), same->plug(attribute->longName), sameValues);
      }
    REQUIRE(sameValues.size() == values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      CAPTURE(values[i].first);
      CHECK(sameValues[i].first == values[i].first);
      CHECK(dg::equal(sameValues[i].second, values[i].second));
    }
    for (const char* flagged : {"translateX", "translateY", "translateZ"})
      for (const auto flag : {dg::Graph::PlugFlag::Locked, dg::Graph::PlugFlag::Keyable})
        CHECK(after.graph().flag(same->plug(flagged), flag) ==
              before.graph().flag(node->plug(flagged), flag));
  }
}

}  // namespace

TEST_CASE("random scenes: all values, places, members and switches come back, in any unit") {
  for (unsigned seed = 0; seed < 40; ++seed) {
    CAPTURE(seed);
    MaScene scene;
    scene::Units units;
    units.linear = seed % 3 == 0   ? scene::LinearUnit::Foot
                   : seed % 3 == 1 ? scene::LinearUnit::Centimeter
                                   : scene::LinearUnit::Inch;
    units.angular = seed % 2 == 0 ? scene::AngularUnit::Degree : scene::AngularUnit::Radian;
    scene->setUnits(units);
    SceneMaker(scene, seed).make();
    const std::string saved = scene.save();
    MaScene opened;
    CHECK(opened.open(saved).warnings.empty());
    checkSame(scene, opened);
    const std::string again = opened.save();
    MaScene reopened;
    reopened.open(again);
    CHECK(reopened->hash() == opened->hash());
    CHECK(reopened.save() == again);
  }
}
