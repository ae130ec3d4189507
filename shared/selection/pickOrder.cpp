#include "shared/selection/pickOrder.h"

#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItSelectionList.h>
#include <maya/MModelMessage.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "shared/numeric/indexArrays.h"
#include "shared/selection/componentGather.h"
#include "shared/tool/ownedCallbacks.h"

namespace {

constexpr std::size_t kMost = 4096;

struct picks {
  ownedCallbacks callbacks;
  MDagPath mesh;
  std::vector<int> order;  ///< vertices, the last picked one last
};

picks& all() {
  static picks module;
  return module;
}

/// The selected vertices, ascending; none when they are of several meshes or too many.
std::vector<int> selectedNow(MDagPath& mesh) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  unsigned int meshes = 0;
  for (MItSelectionList item(selection, MFn::kMeshVertComponent); !item.isDone(); item.next())
    ++meshes;
  if (meshes != 1) return {};
  MIntArray ids;
  appendSelectedVertices(selection, mesh, ids);
  if (ids.length() > kMost) return {};
  std::vector<int> vertices = toVector(ids);
  makeSortedUnique(vertices);
  return vertices;
}

void follow(void*) {
  picks& known = all();
  MDagPath mesh;
  const std::vector<int> now = selectedNow(mesh);
  if (now.empty() || !(mesh == known.mesh)) known.order.clear();
  known.mesh = mesh;
  const auto isSelected = [&](int id) { return std::binary_search(now.begin(), now.end(), id); };
  known.order.erase(std::remove_if(known.order.begin(), known.order.end(),
                                   [&](int id) { return !isSelected(id); }),
                    known.order.end());
  std::vector<int> before = known.order;
  makeSortedUnique(before);
  std::set_difference(now.begin(), now.end(), before.begin(), before.end(),
                      std::back_inserter(known.order));
}

}  // namespace

MStatus pickOrder::begin() {
  end();
  MStatus status;
  all().callbacks.add(
      MModelMessage::addCallback(MModelMessage::kActiveListModified, follow, nullptr, &status));
  return status;
}

void pickOrder::end() {
  all().callbacks.removeAll();
  all().order.clear();
  all().mesh = MDagPath();
}

int pickOrder::lastVertex() {
  follow(nullptr);
  return all().order.empty() ? -1 : all().order.back();
}
