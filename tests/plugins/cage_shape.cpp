// Shapes with points of their own, as their authors would write them: a cage of 2 x 3 x 2 points
// that are control points in the file, drawn and picked by a class of the interface; and a trail
// whose points the class keeps itself.
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MPxGeometryIterator.h>
#include <maya/MPxSurfaceShape.h>
#include <maya/MPxSurfaceShapeUI.h>

#include <vector>

namespace {

constexpr int kAcross = 2, kUp = 3, kPoints = kAcross * kUp * kAcross;

/// Where a cage's point is as long as nobody has moved it.
MPoint restPlace(int i) {
  return MPoint(i % 2 == 0 ? -1 : 1, (i / 4) * 1.0 - 1, i / 2 % 2 == 0 ? -1 : 1);
}

class CageShape : public MPxSurfaceShape {
 public:
  static void* creator() { return new CageShape; }
  static MStatus initialize() {
    MFnNumericAttribute numeric;
    answers = numeric.create("answersClicks", "acl", MFnNumericData::kBoolean, 1);
    return addAttribute(answers);
  }
  void postConstructor() override { setRenderable(true); }

  MPoint place(int i) const {
    const MPlug plug(thisMObject(), mControlPoints);
    for (unsigned int at = 0; at < plug.numElements(); ++at) {
      const MPlug element = plug.elementByPhysicalIndex(at);
      if (static_cast<int>(element.logicalIndex()) == i)
        return restPlace(i) + MVector(element.child(0).asDouble(), element.child(1).asDouble(),
                                      element.child(2).asDouble());
    }
    return restPlace(i);
  }

  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override {
    MBoundingBox box;
    for (int i = 0; i < kPoints; ++i) box.expand(place(i));
    return box;
  }

  MatchResult matchComponent(const MSelectionList& item, const MAttributeSpecArray& spec,
                             MSelectionList& list) override {
    if (spec.length() != 1 || (spec[0].name() != "vtx" && spec[0].name() != "pt"))
      return MPxSurfaceShape::matchComponent(item, spec, list);
    if (spec[0].dimensions() != 1) return kMatchInvalidAttributeDim;
    const MAttributeIndex index = spec[0][0];
    int lower = 0, upper = kPoints - 1;
    if (index.hasLowerBound()) index.getLower(lower);
    if (index.hasUpperBound()) index.getUpper(upper);
    if (lower > upper || upper >= kPoints) return kMatchInvalidAttributeRange;
    MDagPath path;
    item.getDagPath(0, path);
    MFnSingleIndexedComponent component;
    MObject points = component.create(MFn::kMeshVertComponent);
    for (int i = lower; i <= upper; ++i) component.addElement(i);
    list.add(path, points);
    return kMatchOk;
  }
  MObject createFullVertexGroup() const override {
    MFnSingleIndexedComponent component;
    MObject all = component.create(MFn::kMeshVertComponent);
    component.setCompleteData(kPoints);
    return all;
  }
  void componentToPlugs(MObject& component, MSelectionList& list) const override {
    MIntArray elements;
    if (MFnSingleIndexedComponent(component).getElements(elements) != MS::kSuccess) return;
    MPlug plug(thisMObject(), mControlPoints);
    for (unsigned int i = 0; i < elements.length(); ++i) {
      plug.selectAncestorLogicalIndex(static_cast<unsigned int>(elements[i]), mControlPoints);
      list.add(plug);
    }
  }
  bool acceptsGeometryIterator(bool writeable) override { return !writeable; }
  MPxGeometryIterator* geometryIteratorSetup(MObjectArray& componentList, MObject& components,
                                             bool forReadOnly) override;

  void transformUsing(const MMatrix& by, const MObjectArray& components,
                      MVertexCachingMode cachingMode, MPointArray* pointCache) override {
    MDataBlock block = forceCache();
    MArrayDataHandle array = block.outputArrayValue(mControlPoints);
    MArrayDataBuilder builder = array.builder();
    unsigned int cached = 0;
    for (unsigned int c = 0; c < components.length(); ++c) {
      MIntArray elements;
      MFnSingleIndexedComponent(components[c]).getElements(elements);
      for (unsigned int e = 0; e < elements.length(); ++e) {
        const MPoint now = place(elements[e]);
        if (cachingMode == kSavePoints) pointCache->append(now);
        const MPoint next = cachingMode == kRestorePoints ? (*pointCache)[cached++] : now * by;
        const MVector offset = next - restPlace(elements[e]);
        MDataHandle handle = builder.addElement(static_cast<unsigned int>(elements[e]));
        handle.set3Double(offset.x, offset.y, offset.z);
      }
    }
    array.set(builder);
    childChanged(kBoundingBoxChanged);
  }

  static MTypeId id;
  static MObject answers;
};

class CageIterator : public MPxGeometryIterator {
 public:
  CageIterator(CageShape* shape, MObjectArray& components)
      : MPxGeometryIterator(shape, components), shape_(shape) {
    reset();
  }
  CageIterator(CageShape* shape, MObject& components)
      : MPxGeometryIterator(shape, components), shape_(shape) {
    reset();
  }
  void reset() override {
    MPxGeometryIterator::reset();
    setCurrentPoint(0);
    setMaxPoints(kPoints);
  }
  MPoint point() const override { return shape_->place(index()); }

 private:
  CageShape* shape_;
};

MPxGeometryIterator* CageShape::geometryIteratorSetup(MObjectArray& componentList,
                                                      MObject& components, bool) {
  if (components.isNull()) return new CageIterator(this, componentList);
  return new CageIterator(this, components);
}

enum Token { kWire, kDots, kChosenDots };

class CageUI : public MPxSurfaceShapeUI {
 public:
  static void* creator() { return new CageUI; }

  void getDrawRequests(const MDrawInfo& info, bool objectAndActiveOnly,
                       MDrawRequestQueue& queue) override {
    auto* shape = static_cast<CageShape*>(surfaceShape());
    MDrawData data;
    getDrawData(shape, data);
    MDrawRequest wire = info.getPrototype(*this);
    wire.setDrawData(data);
    wire.setToken(kWire);
    wire.setColor(info.displayStatus() == M3dView::kLead     ? 18
                  : info.displayStatus() == M3dView::kActive ? 15
                                                             : 4,
                  M3dView::kActiveColors);
    queue.add(wire);
    if (!objectAndActiveOnly) {
      MDrawRequest dots = info.getPrototype(*this);
      dots.setDrawData(data);
      dots.setToken(kDots);
      dots.setColor(8, M3dView::kActiveColors);
      queue.add(dots);
    }
    if (!shape->hasActiveComponents()) return;
    MDrawRequest chosen = info.getPrototype(*this);
    chosen.setDrawData(data);
    chosen.setToken(kChosenDots);
    MObject component = shape->activeComponents()[0];
    chosen.setComponent(component);
    chosen.setColor(16, M3dView::kActiveColors);
    queue.add(chosen);
  }

  void draw(const MDrawRequest& request, M3dView& view) const override {
    const auto* shape = static_cast<const CageShape*>(request.drawData().geometry());
    view.beginGL();
    if (request.token() == kWire) {
      glLineWidth(2);
      glBegin(GL_LINES);
      for (int i = 0; i < kPoints; ++i) {
        if (i % 2 == 0) line(*shape, i, i + 1);
        if (i / 2 % 2 == 0) line(*shape, i, i + 2);
        if (i / 4 < kUp - 1) line(*shape, i, i + 4);
      }
      glEnd();
    } else {
      glPointSize(request.token() == kDots ? 6.0F : 9.0F);
      MIntArray elements;
      if (request.token() == kChosenDots)
        MFnSingleIndexedComponent(request.component()).getElements(elements);
      else
        for (int i = 0; i < kPoints; ++i) elements.append(i);
      glBegin(GL_POINTS);
      for (unsigned int i = 0; i < elements.length(); ++i) vertex(shape->place(elements[i]));
      glEnd();
    }
    view.endGL();
  }

  bool select(MSelectInfo& info, MSelectionList& list, MPointArray& places) const override {
    const auto* shape = static_cast<const CageShape*>(surfaceShape());
    if (!MPlug(shape->thisMObject(), CageShape::answers).asBool()) return false;
    M3dView view = info.view();
    const MMatrix world = info.selectPath().inclusiveMatrix();
    if (info.displayStatus() == M3dView::kHilite &&
        selectPoints(info, view, *shape, world, list, places))
      return true;
    view.beginSelect();
    glBegin(GL_LINES);
    for (int i = 0; i < kPoints; ++i) {
      if (i % 2 == 0) line(*shape, i, i + 1);
      if (i / 2 % 2 == 0) line(*shape, i, i + 2);
      if (i / 4 < kUp - 1) line(*shape, i, i + 4);
    }
    glEnd();
    if (view.endSelect() <= 0) return false;
    MSelectionMask mask(MSelectionMask::kSelectMeshes);
    if (!info.selectable(mask)) return false;
    MSelectionList item;
    item.add(info.selectPath());
    const MPoint center = shape->boundingBox().center() * world;
    info.addSelection(item, center, list, places, mask, false);
    return true;
  }

 private:
  static void vertex(const MPoint& p) { glVertex3d(p.x, p.y, p.z); }
  static void line(const CageShape& shape, int a, int b) {
    vertex(shape.place(a));
    vertex(shape.place(b));
  }
  static bool selectPoints(MSelectInfo& info, M3dView& view, const CageShape& shape,
                           const MMatrix& world, MSelectionList& list, MPointArray& places) {
    MSelectionMask mask(MSelectionMask::kSelectMeshVerts);
    if (!info.selectableComponent(true, mask)) return false;
    MFnSingleIndexedComponent component;
    MObject hits = component.create(MFn::kMeshVertComponent);
    int count = 0, nearest = -1;
    double depth = 0;
    for (int i = 0; i < kPoints; ++i) {
      view.beginSelect();
      glBegin(GL_POINTS);
      vertex(shape.place(i));
      glEnd();
      if (view.endSelect() <= 0) continue;
      ++count;
      if (!info.singleSelection()) {
        component.addElement(i);
        continue;
      }
      const MPoint aligned = shape.place(i) * info.getAlignmentMatrix();
      if (nearest < 0 || aligned.z > depth) {
        nearest = i;
        depth = aligned.z;
      }
    }
    if (count == 0) return false;
    if (info.singleSelection()) component.addElement(nearest);
    MSelectionList item;
    item.add(info.selectPath(), hits);
    const MPoint at = nearest < 0 ? MPoint() : shape.place(nearest) * world;
    info.addSelection(item, at, list, places, mask, true);
    return true;
  }
};

/// Points along a line that are in no attribute; components can be deleted.
class TrailShape : public MPxSurfaceShape {
 public:
  static void* creator() { return new TrailShape; }
  static MStatus initialize() { return MS::kSuccess; }
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override {
    MBoundingBox box;
    for (const MPoint& each : points) box.expand(each);
    return box;
  }
  bool acceptsGeometryIterator(bool) override { return true; }
  MPxGeometryIterator* geometryIteratorSetup(MObjectArray& componentList, MObject& components,
                                             bool forReadOnly) override;
  bool deleteComponents(const MObjectArray& components, MDoubleArray& undoInfo) override {
    for (unsigned int c = 0; c < components.length(); ++c) {
      MIntArray elements;
      MFnSingleIndexedComponent(components[c]).getElements(elements);
      for (unsigned int e = elements.length(); e-- > 0;) {
        const int i = elements[e];
        if (i < 0 || i >= static_cast<int>(points.size())) return false;
        for (const double each : {double(i), points[i].x, points[i].y, points[i].z})
          undoInfo.append(each);
        points.erase(points.begin() + i);
      }
    }
    return true;
  }
  bool undeleteComponents(const MObjectArray&, MDoubleArray& undoInfo) override {
    for (unsigned int at = undoInfo.length(); at >= 4; at -= 4)
      points.insert(points.begin() + static_cast<int>(undoInfo[at - 4]),
                    MPoint(undoInfo[at - 3], undoInfo[at - 2], undoInfo[at - 1]));
    return true;
  }
  std::vector<MPoint> points{MPoint(0, 0, 0), MPoint(1, 0, 0), MPoint(2, 0, 0), MPoint(3, 0, 0)};
  static MTypeId id;
};

class TrailIterator : public MPxGeometryIterator {
 public:
  template <class Components>
  TrailIterator(TrailShape* shape, Components& components)
      : MPxGeometryIterator(shape, components), points_(shape->points) {
    reset();
  }
  void reset() override {
    MPxGeometryIterator::reset();
    setMaxPoints(static_cast<int>(points_.size()));
  }
  MPoint point() const override { return points_[static_cast<std::size_t>(index())]; }
  void setPoint(const MPoint& p) const override { points_[static_cast<std::size_t>(index())] = p; }

 private:
  std::vector<MPoint>& points_;
};

MPxGeometryIterator* TrailShape::geometryIteratorSetup(MObjectArray& componentList,
                                                       MObject& components, bool) {
  if (components.isNull()) return new TrailIterator(this, componentList);
  return new TrailIterator(this, components);
}

class TrailUI : public MPxSurfaceShapeUI {
 public:
  static void* creator() { return new TrailUI; }
};

MTypeId CageShape::id(0x0007f050);
MObject CageShape::answers;
MTypeId TrailShape::id(0x0007f051);

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  const MStatus status = plugin.registerShape("cageShape", CageShape::id, &CageShape::creator,
                                              &CageShape::initialize, &CageUI::creator);
  if (!status) return status;
  return plugin.registerShape("trailShape", TrailShape::id, &TrailShape::creator,
                              &TrailShape::initialize, &TrailUI::creator);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  plugin.deregisterNode(TrailShape::id);
  return plugin.deregisterNode(CageShape::id);
}
