// Node types as a plug-in writes them, with nothing but the API's headers.
#include <maya/MArgList.h>
#include <maya/MDGMessage.h>
#include <maya/MDGModifier.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MNodeMessage.h>
#include <maya/MPxCommand.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxNode.h>
#include <maya/MSelectionList.h>

#include <stdexcept>

namespace {

/// sum = scale * (all inputs), doubled = each input twice, offset follows a triple; level lives in
/// the object.
class SumNode : public MPxNode {
 public:
  static void* creator() { return new SumNode; }
  static MStatus initialize();
  static MTypeId id;
  static MObject inputs, scale, sum, doubled, vector, moved, level, echo, untracked, fails;

  void postConstructor() override { wasConstructed_ = !thisMObject().isNull(); }

  MStatus compute(const MPlug& plug, MDataBlock& block) override {
    if (plug == fails) throw std::runtime_error("no such sum");
    if (plug == sum) {
      MArrayDataHandle array = block.inputArrayValue(inputs);
      double total = 0;
      for (unsigned int i = 0; i < array.elementCount(); ++i, array.next())
        total += array.inputValue().asDouble();
      block.outputValue(sum).asDouble() = total * block.inputValue(scale).asDouble();
      block.setClean(plug);
      return MS::kSuccess;
    }
    if (plug == doubled || plug.array() == doubled) return computeDoubled(block);
    if (plug == moved || plug.parent() == moved) {
      const float3& in = block.inputValue(vector).asFloat3();
      block.outputValue(moved).set3Float(in[0] + 1, in[1] + 2, in[2] + 3);
      block.setClean(moved);
      return MS::kSuccess;
    }
    if (plug == echo) {
      MDataHandle out = block.outputValue(echo);
      out.setString(MString(wasConstructed_ ? "made " : "lost ") +
                    block.inputValue(untracked).asInt());
      out.setClean();
      return MS::kSuccess;
    }
    return MS::kUnknownParameter;
  }

  MStatus setDependentsDirty(const MPlug& plug, MPlugArray& affected) override {
    if (plug == untracked) affected.append(MPlug(thisMObject(), echo));
    return MS::kSuccess;
  }
  bool getInternalValue(const MPlug& plug, MDataHandle& handle) override {
    if (plug != level) return false;
    handle.set(level_);
    return true;
  }
  bool setInternalValue(const MPlug& plug, const MDataHandle& handle) override {
    if (plug != level) return false;
    level_ = handle.asInt() * 10;
    return true;
  }
  void copyInternalData(MPxNode* original) override {
    level_ = static_cast<SumNode*>(original)->level_;
  }
  MStatus shouldSave(const MPlug& plug, bool& isSaved) override {
    if (plug != untracked) return MS::kUnknownParameter;
    isSaved = false;
    return MS::kSuccess;
  }
  MStatus legalConnection(const MPlug& plug, const MPlug&, bool asSrc,
                          bool& isLegal) const override {
    if (asSrc || plug != scale) return MS::kUnknownParameter;
    isLegal = false;
    return MS::kSuccess;
  }

 private:
  MStatus computeDoubled(MDataBlock& block) {
    MArrayDataHandle in = block.inputArrayValue(inputs);
    MArrayDataHandle out = block.outputArrayValue(doubled);
    MArrayDataBuilder builder(&block, doubled, in.elementCount());
    for (unsigned int i = 0; i < in.elementCount(); ++i, in.next())
      builder.addElement(in.elementIndex()).setDouble(2 * in.inputValue().asDouble());
    MStatus status = out.set(builder);
    out.setAllClean();
    return status;
  }
  int level_ = 7;
  bool wasConstructed_ = false;
};

MTypeId SumNode::id(0x00123400);
MObject SumNode::inputs, SumNode::scale, SumNode::sum, SumNode::doubled, SumNode::vector,
    SumNode::moved, SumNode::level, SumNode::echo, SumNode::untracked, SumNode::fails;

MStatus SumNode::initialize() {
  MFnNumericAttribute numeric;
  MFnTypedAttribute typed;
  inputs = numeric.create("inputs", "ins", MFnNumericData::kDouble);
  numeric.setArray(true);
  numeric.setKeyable(true);
  scale = numeric.create("sumScale", "ss", MFnNumericData::kDouble, 1.0);
  numeric.setMin(0.0);
  sum = numeric.create("sum", "sm", MFnNumericData::kDouble);
  numeric.setWritable(false);
  numeric.setStorable(false);
  doubled = numeric.create("doubled", "dbl", MFnNumericData::kDouble);
  numeric.setArray(true);
  numeric.setUsesArrayDataBuilder(true);
  vector = numeric.createPoint("vector", "vec");
  moved = numeric.createPoint("moved", "mov");
  level = numeric.create("level", "lev", MFnNumericData::kInt);
  numeric.setInternal(true);
  untracked = numeric.create("untracked", "unt", MFnNumericData::kInt);
  fails = numeric.create("fails", "fls", MFnNumericData::kDouble);
  echo = typed.create("echo", "eco", MFnData::kString);
  for (const MObject& each :
       {inputs, scale, sum, doubled, vector, moved, level, untracked, echo, fails})
    CHECK_MSTATUS_AND_RETURN_IT(addAttribute(each));
  attributeAffects(inputs, sum);
  attributeAffects(scale, sum);
  attributeAffects(inputs, doubled);
  attributeAffects(vector, moved);
  attributeAffects(scale, fails);
  attributeAffects(scale, echo);
  return MS::kSuccess;
}

class BoxLocator : public MPxLocatorNode {
 public:
  static void* creator() { return new BoxLocator; }
  static MStatus initialize() { return MS::kSuccess; }
  static MTypeId id;
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override { return {MPoint(-1, -2, -3), MPoint(1, 2, 3)}; }
};
MTypeId BoxLocator::id(0x00123401);

int attributeSets = 0;
MCallbackId lastCallback = 0;

void onAttribute(MNodeMessage::AttributeMessage message, MPlug& plug, MPlug&, void*) {
  if (!(message & MNodeMessage::kAttributeSet)) return;
  ++attributeSets;
  MGlobal::displayInfo(MString("set ") + plug.name());
  if (attributeSets == 2) MMessage::removeCallback(MMessage::currentCallbackId());
}

/// watchSum NODE: counts edits of the node; buildSum [fail]: makes a wired pair of nodes through a
/// modifier.
class WatchCommand : public MPxCommand {
 public:
  static void* creator() { return new WatchCommand; }
  MStatus doIt(const MArgList& args) override {
    MSelectionList list;
    MObject node;
    CHECK_MSTATUS_AND_RETURN_IT(list.add(args.asString(0)));
    CHECK_MSTATUS_AND_RETURN_IT(list.getDependNode(0, node));
    MStatus status;
    lastCallback = MNodeMessage::addAttributeChangedCallback(node, onAttribute, nullptr, &status);
    return status;
  }
};

class BuildCommand : public MPxCommand {
 public:
  static void* creator() { return new BuildCommand; }
  bool isUndoable() const override { return true; }
  MStatus doIt(const MArgList& args) override {
    const MObject first = modifier_.createNode("sumNode");
    const MObject second = modifier_.createNode(SumNode::id);
    MFnDependencyNode source(first), target(second);
    modifier_.renameNode(first, "source");
    modifier_.newPlugValueDouble(source.findPlug("sumScale", true), 3);
    modifier_.connect(source.findPlug("sum", true),
                      target.findPlug("inputs", true).elementByLogicalIndex(4));
    modifier_.commandToExecute("createNode \"transform\" -name \"byCommand\"");
    if (args.length() > 0) modifier_.connect(first, SumNode::sum, second, SumNode::scale);
    return redoIt();
  }
  MStatus redoIt() override { return modifier_.doIt(); }
  MStatus undoIt() override { return modifier_.undoIt(); }

 private:
  MDGModifier modifier_;
};

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "test", "1.0", "Any");
  CHECK_MSTATUS_AND_RETURN_IT(
      plugin.registerNode("sumNode", SumNode::id, SumNode::creator, SumNode::initialize));
  CHECK_MSTATUS_AND_RETURN_IT(plugin.registerNode("boxLocator", BoxLocator::id, BoxLocator::creator,
                                                  BoxLocator::initialize, MPxNode::kLocatorNode));
  CHECK_MSTATUS_AND_RETURN_IT(plugin.registerCommand("watchSum", WatchCommand::creator));
  return plugin.registerCommand("buildSum", BuildCommand::creator);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  plugin.deregisterCommand("buildSum");
  plugin.deregisterCommand("watchSum");
  plugin.deregisterNode(BoxLocator::id);
  return plugin.deregisterNode(SumNode::id);
}
