#include "host/viewport/scene_gather.h"

#include <doctest/doctest.h>

#include "tests/host/scene/scene_fixture.h"

namespace host::viewport {

namespace {

using scene::Component;
using scene::ComponentType;
using scene::SelectionList;
using scene::test::Scene;

}  // namespace

TEST_CASE("gatherMeshes: every instance by itself, with what is selected on it") {
  Scene scene;
  dg::Node& shape = scene.meshUnder("box", 3);
  dg::Node& second = scene.transform("second");
  REQUIRE(scene->addInstance(shape, &second));
  scene.meshUnder("other", 1);
  SelectionList selection;
  selection.add(scene.path("box"), Component(ComponentType::Vertex, {4, 1, 700}));
  selection.add(scene.path("box"), Component::all(ComponentType::Face));
  selection.add(scene.path("other"));
  scene->setSelection(selection);
  SelectionList hilite;
  hilite.add(scene.path("second"));
  scene->setHilite(hilite);

  const std::vector<RenderMesh> meshes = gatherMeshes(*scene.document, {.vertexMode = true});
  REQUIRE(meshes.size() == 3);
  CHECK(meshes[0].name == "|box|boxShape");
  CHECK(meshes[0].selected.vertices == std::vector<VertexId>{1, 4});
  CHECK(meshes[0].selected.faces == std::vector<FaceId>{0, 1, 2});
  CHECK(meshes[0].state == ObjectState::Dormant);
  CHECK(meshes[1].name == "|second|boxShape");
  CHECK(meshes[1].selected.isEmpty());
  CHECK(meshes[1].state == ObjectState::Hilited);
  CHECK(meshes[1].showVertices);
  CHECK(meshes[2].state == ObjectState::Lead);
  CHECK(meshes[0].id != meshes[1].id);
  CHECK(meshes[0].mesh.points().data() == meshes[1].mesh.points().data());
}

TEST_CASE("gatherMeshes: a selected group lights all below it, by the instance that is selected") {
  Scene scene;
  dg::Node& shape = scene.meshUnder("box", 2);
  dg::Node& group = scene.transform("group");
  REQUIRE(scene->reparent(scene.path("box"), &group));
  REQUIRE(scene->addInstance(shape, &scene.transform("copy")));
  scene.meshUnder("other", 1);
  SelectionList selection;
  selection.add(scene.path("other"));
  selection.add(scene.path("group"));
  selection.add(scene.path("group|box"), Component(ComponentType::Face, {1}));
  selection.add(scene.path("group|box"));
  selection.add(scene.path("other"), Component(ComponentType::Vertex, {0}));
  scene->setSelection(selection);
  const auto meshNamed = [&](const std::string& name) {
    for (RenderMesh& each : gatherMeshes(*scene.document))
      if (each.name == name) return each;
    FAIL("no mesh " << name);
    return RenderMesh{};
  };
  // The last item names components: no object leads.
  CHECK(meshNamed("|group|box|boxShape").state == ObjectState::Selected);
  CHECK(meshNamed("|group|box|boxShape").selected.faces == std::vector<FaceId>{1});
  CHECK(meshNamed("|copy|boxShape").state == ObjectState::Dormant);
  CHECK(meshNamed("|copy|boxShape").selected.isEmpty());
  CHECK(meshNamed("|other|otherShape").state == ObjectState::Selected);
  CHECK(meshNamed("|other|otherShape").selected.vertices == std::vector<VertexId>{0});

  // The group last: it leads, though the box below it is selected by itself before.
  SelectionList led;
  led.add(scene.path("group|box"));
  led.add(scene.path("other"));
  led.add(scene.path("group"));
  scene->setSelection(led);
  CHECK(meshNamed("|group|box|boxShape").state == ObjectState::Lead);
  CHECK(meshNamed("|other|otherShape").state == ObjectState::Selected);
  const auto alone = gatherMesh(*scene.document, scene.path("group|box|boxShape"));
  REQUIRE(alone);
  CHECK(alone->state == ObjectState::Lead);
}

TEST_CASE("gatherMeshes: intermediate shapes and shapes without a mesh don't show") {
  Scene scene;
  dg::Node& hidden = scene.meshUnder("hidden", 1);
  REQUIRE(scene->graph().set(hidden.plug("intermediateObject"), std::int64_t{1}));
  scene.make("mesh", "blank", &scene.transform("empty"));
  scene.meshUnder("shown", 1);
  const std::vector<RenderMesh> meshes = gatherMeshes(*scene.document);
  REQUIRE(meshes.size() == 1);
  CHECK(meshes[0].name == "|shown|shownShape");
  CHECK_FALSE(gatherCamera(scene.path("shown")));
  CHECK_FALSE(gatherMesh(*scene.document, scene.path("shown")));
  CHECK(gatherMesh(*scene.document, scene.path("shown|shownShape")));
}

}  // namespace host::viewport
