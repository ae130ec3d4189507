// Every node has the names and defaults that scene files count on: a file leaves out what is at its
// default, so a wrong one reads and writes other geometry without a word.
#include <doctest/doctest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"

using namespace host;

namespace {

struct Row {
  std::string node, attribute, shortName, value;  ///< angles in degrees; empty: not known
};

std::vector<Row> table() {
  std::ifstream file(std::string(QXMT_SOURCE_DIR) + "/tests/data/node_defaults.tsv");
  REQUIRE(file);
  std::vector<Row> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream cells(line);
    Row row;
    std::getline(cells, row.node, '\t');
    std::getline(cells, row.attribute, '\t');
    std::getline(cells, row.shortName, '\t');
    std::getline(cells, row.value, '\t');
    rows.push_back(row);
  }
  return rows;
}

double numberOf(const dg::Attribute& leaf) {
  const dg::Value value = leaf.initialValue();
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
  const auto* real = std::get_if<double>(&value);
  REQUIRE(real);
  return leaf.type == dg::AttributeType::Angle ? *real * 180 / std::numbers::pi : *real;
}

/// "1" or "0,1,0": one number a leaf.
void checkDefault(const dg::Attribute& attribute, const std::string& text) {
  std::vector<double> numbers;
  std::istringstream cells(text);
  for (std::string cell; std::getline(cells, cell, ',');) numbers.push_back(std::stod(cell));
  std::vector<const dg::Attribute*> leaves;
  for (const dg::AttributePtr& child : attribute.children) leaves.push_back(child.get());
  if (leaves.empty()) leaves.push_back(&attribute);
  REQUIRE(leaves.size() == numbers.size());
  for (std::size_t i = 0; i < leaves.size(); ++i)
    CHECK(std::abs(numberOf(*leaves[i]) - numbers[i]) < 1e-4);
}

}  // namespace

TEST_CASE("nodes have the names and defaults that scene files count on") {
  dg::TypeRegistry types;
  nodes::registerBuiltinTypes(types);
  modelling::registerTypes(types);
  const std::vector<Row> rows = table();
  CHECK(rows.size() > 600);
  for (const Row& row : rows) {
    INFO(row.node, ".", row.attribute);
    const dg::NodeType* type = types.find(row.node);
    REQUIRE(type);
    const dg::Attribute* attribute = type->find(row.attribute);
    const bool isThere = attribute && attribute->longName == row.attribute;
    CHECK(isThere);
    if (!isThere) continue;
    if (!row.shortName.empty()) CHECK(attribute->shortName == row.shortName);
    if (!row.value.empty()) checkDefault(*attribute, row.value);
  }
}
