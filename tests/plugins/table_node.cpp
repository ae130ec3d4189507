// A node with arrays of compounds and a data type of its own, as a plug-in's author writes them.
#include <maya/MArgList.h>
#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnPluginData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPxData.h>
#include <maya/MPxNode.h>

namespace {

/// A number with the count of those it was made from.
class Tally : public MPxData {
 public:
  static void* creator() { return new Tally; }
  static MTypeId id;
  void copy(const MPxData& source) override {
    const auto& other = static_cast<const Tally&>(source);
    sum = other.sum;
    count = other.count;
  }
  MTypeId typeId() const override { return id; }
  MString name() const override { return "tally"; }
  MStatus readASCII(const MArgList& args, unsigned int& lastElement) override {
    MStatus status;
    sum = args.asDouble(lastElement, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    count = args.asInt(++lastElement, &status);
    return count < 0 ? MS::kFailure : status;
  }
  MStatus writeASCII(std::ostream& out) override {
    out << sum << " " << count;
    return out.fail() ? MS::kFailure : MS::kSuccess;
  }
  double sum = 0;
  int count = 0;
};
MTypeId Tally::id(0x00123410);

/// Multiplies each row's amount by its weight, and leaves out rows that come to nothing.
class TableNode : public MPxNode {
 public:
  static void* creator() { return new TableNode; }
  static MStatus initialize();
  static MTypeId id;
  static MObject rows, weight, amount, results, product, share, tally;

  MStatus compute(const MPlug& plug, MDataBlock& block) override {
    if (plug == tally) return computeTally(block);
    if (plug == results || plug == product || plug == share) return computeResults(block);
    return MS::kUnknownParameter;
  }

 private:
  MStatus computeResults(MDataBlock& block) {
    MArrayDataHandle in = block.inputArrayValue(rows);
    MArrayDataHandle out = block.outputArrayValue(results);
    MStatus status;
    // What was there before stays unless it is taken out.
    MArrayDataBuilder builder = out.builder(&status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    double sum = 0;
    for (unsigned int i = 0; i < in.elementCount(); ++i) {
      in.jumpToArrayElement(i);
      sum += productOf(in.inputValue());
    }
    for (unsigned int i = 0; i < in.elementCount(); ++i) {
      in.jumpToArrayElement(i);
      const double value = productOf(in.inputValue());
      if (value == 0) {
        builder.removeElement(in.elementIndex());
        continue;
      }
      MDataHandle element = builder.addElement(in.elementIndex(), &status);
      CHECK_MSTATUS_AND_RETURN_IT(status);
      element.child(product).setDouble(value);
      element.child(share).setDouble(value / sum);
    }
    CHECK_MSTATUS_AND_RETURN_IT(out.set(builder));
    return out.setAllClean();
  }
  MStatus computeTally(MDataBlock& block) {
    MStatus status;
    MFnPluginData fn;
    MObject made = fn.create(Tally::id, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    auto* data = static_cast<Tally*>(fn.data(&status));
    CHECK_MSTATUS_AND_RETURN_IT(status);
    MArrayDataHandle in = block.inputArrayValue(rows);
    for (unsigned int i = 0; i < in.elementCount(); ++i, in.next()) {
      data->sum += productOf(in.inputValue());
      ++data->count;
    }
    MDataHandle out = block.outputValue(tally);
    out.setMPxData(data);
    out.setClean();
    return MS::kSuccess;
  }
  static double productOf(const MDataHandle& row) {
    return row.child(weight).asDouble() * row.child(amount).asInt();
  }
};

MTypeId TableNode::id(0x00123411);
MObject TableNode::rows, TableNode::weight, TableNode::amount, TableNode::results,
    TableNode::product, TableNode::share, TableNode::tally;

MStatus TableNode::initialize() {
  MFnNumericAttribute numeric;
  MFnCompoundAttribute compound;
  MFnTypedAttribute typed;
  weight = numeric.create("weight", "w", MFnNumericData::kDouble, 1.0);
  amount = numeric.create("amount", "am", MFnNumericData::kInt);
  rows = compound.create("rows", "rw");
  compound.addChild(weight);
  compound.addChild(amount);
  compound.setArray(true);
  product = numeric.create("product", "pr", MFnNumericData::kDouble);
  share = numeric.create("share", "sh", MFnNumericData::kDouble);
  results = compound.create("results", "rs");
  compound.addChild(product);
  compound.addChild(share);
  compound.setArray(true);
  compound.setWritable(false);
  compound.setStorable(false);
  compound.setUsesArrayDataBuilder(true);
  tally = typed.create("tally", "ta", Tally::id);
  typed.setWritable(false);
  typed.setStorable(false);
  for (const MObject& each : {rows, results, tally})
    CHECK_MSTATUS_AND_RETURN_IT(addAttribute(each));
  attributeAffects(rows, results);
  attributeAffects(rows, tally);
  return MS::kSuccess;
}

/// Reads the sum and the count from the node at the other end.
class TallyReader : public MPxNode {
 public:
  static void* creator() { return new TallyReader; }
  static MTypeId id;
  static MObject in, sum, count;
  static MStatus initialize() {
    MFnTypedAttribute typed;
    MFnNumericAttribute numeric;
    in = typed.create("inTally", "it", Tally::id);
    sum = numeric.create("sum", "sm", MFnNumericData::kDouble);
    count = numeric.create("count", "ct", MFnNumericData::kInt);
    for (const MObject& each : {in, sum, count}) CHECK_MSTATUS_AND_RETURN_IT(addAttribute(each));
    attributeAffects(in, sum);
    return attributeAffects(in, count);
  }
  MStatus compute(const MPlug& plug, MDataBlock& block) override {
    if (plug != sum && plug != count) return MS::kUnknownParameter;
    const auto* data = dynamic_cast<const Tally*>(block.inputValue(in).asPluginData());
    block.outputValue(sum).setDouble(data ? data->sum : -1);
    block.outputValue(count).setInt(data ? data->count : -1);
    block.setClean(sum);
    return block.setClean(count);
  }
};
MTypeId TallyReader::id(0x00123412);
MObject TallyReader::in, TallyReader::sum, TallyReader::count;

}  // namespace

PLUGIN_EXPORT MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  CHECK_MSTATUS_AND_RETURN_IT(plugin.registerData("tally", Tally::id, Tally::creator));
  CHECK_MSTATUS_AND_RETURN_IT(plugin.registerNode("tallyReader", TallyReader::id,
                                                  TallyReader::creator, TallyReader::initialize));
  return plugin.registerNode("tableNode", TableNode::id, TableNode::creator, TableNode::initialize);
}
PLUGIN_EXPORT MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  plugin.deregisterNode(TableNode::id);
  plugin.deregisterNode(TallyReader::id);
  return plugin.deregisterData(Tally::id);
}
