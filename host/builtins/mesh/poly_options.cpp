// polyOptions: how meshes are shown, kept in attributes of each shape.
#include <array>

#include "host/builtins/common/command.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

/// A flag that sets one attribute from its argument, or, without an argument, to a value of its
/// own.
struct Option {
  const char *shortName, *longName, *attribute;
  enum { OnOff, Number, Text, Whole, Fixed } kind = OnOff;
  int fixed = 0;
  int onValue = 1;  ///< what "on" stands for
};
constexpr std::array kOptions = {
    Option{"db", "displayBorder", "displayBorders"},
    Option{"dc", "displayCenter", "displayCenter"},
    Option{"dif", "displayInvisibleFaces", "displayInvisibleFaces"},
    Option{"dmb", "displayMapBorder", "displayMapBorders"},
    Option{"dn", "displayNormal", "displayNormal"},
    Option{"dsc", "displaySubdComps", "displaySubdComps"},
    Option{"dt", "displayTriangle", "displayTriangles"},
    Option{"duv", "displayUVs", "displayUVs"},
    Option{"dv", "displayVertex", "displayVertices"},
    Option{"dw", "displayWarp", "displayNonPlanar"},
    Option{"cs", "colorShadedDisplay", "displayColors"},
    Option{"bc", "backCulling", "backfaceCulling", Option::OnOff, 0, 3},
    Option{"bcv", "backCullVertex", "vertexBackfaceCulling"},
    Option{"cm", "colorMaterialChannel", "displayColorChannel", Option::Text},
    Option{"mb", "materialBlend", "materialBlend", Option::Text},
    Option{"sb", "sizeBorder", "borderWidth", Option::Number},
    Option{"sn", "sizeNormal", "normalSize", Option::Number},
    Option{"suv", "sizeUV", "uvSize", Option::Number},
    Option{"sv", "sizeVertex", "vertexSize", Option::Number},
    Option{"vnm", "vertexNormalMethod", "vertexNormalMethod", Option::Whole},
    Option{"ae", "allEdges", "displayEdges", Option::Fixed, 0},
    Option{"se", "softEdge", "displayEdges", Option::Fixed, 1},
    Option{"he", "hardEdge", "displayEdges", Option::Fixed, 2},
    Option{"hec", "hardEdgeColor", "displayEdges", Option::Fixed, 3},
    Option{"wbc", "wireBackCulling", "backfaceCulling", Option::Fixed, 1},
    Option{"hb", "hardBack", "backfaceCulling", Option::Fixed, 2},
    Option{"fb", "fullBack", "backfaceCulling", Option::Fixed, 3},
    Option{"f", "facet", "normalType", Option::Fixed, 0},
    Option{"pt", "point", "normalType", Option::Fixed, 1},
    Option{"pf", "pointFacet", "normalType", Option::Fixed, 2},
};
constexpr const char* kItemNumbers = "displayItemNumbers";

std::int64_t wholeNumber(dg::Graph& graph, const dg::Plug& plug) {
  const auto value = graph.get(plug);
  const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return number ? *number : 0;
}

/// The number of an enum attribute's field of that name.
Result<std::int64_t> fieldNumber(const dg::Plug& plug, const std::string& name) {
  for (const auto& field : plug.attribute()->enumFields)
    if (field.name == name) return std::int64_t{field.value};
  return fail("polyOptions: '{}' is no {}.", name, plug.attribute()->longName);
}

std::string fieldName(const dg::Plug& plug, std::int64_t number) {
  for (const auto& field : plug.attribute()->enumFields)
    if (field.value == number) return field.name;
  return {};
}

Result<void> setOption(dg::Graph& graph, const dg::Plug& plug, const Option& option,
                       const ParsedArgs& args) {
  switch (option.kind) {
    case Option::OnOff: {
      const bool flips = args.has("relative");
      const bool isOn = flips ? wholeNumber(graph, plug) == 0 : args.boolean(option.longName, true);
      return graph.set(plug, std::int64_t{isOn ? option.onValue : 0});
    }
    case Option::Number: {
      const auto before = graph.get(plug);
      const auto* size = before ? std::get_if<double>(&*before) : nullptr;
      const double base = args.has("relative") && size ? *size : 0;
      return graph.set(plug, base + args.real(option.longName));
    }
    case Option::Text: {
      const std::string text = args.text(option.longName);
      if (plug.attribute()->enumFields.empty()) return graph.set(plug, text);
      const auto number = fieldNumber(plug, text);
      return number ? graph.set(plug, *number) : failWith(number.error());
    }
    case Option::Whole:
      return graph.set(plug, std::int64_t{args.integer(option.longName)});
    case Option::Fixed:
      return graph.set(plug, std::int64_t{option.fixed});
  }
  return {};
}

Result<void> setOptions(Context& context, const ParsedArgs& args, dg::Node& shape) {
  dg::Graph& graph = context.document.graph();
  for (const Option& option : kOptions)
    if (args.has(option.longName))
      HOST_TRY(setOption(graph, shape.plug(option.attribute), option, args));
  if (!args.has(kItemNumbers)) return {};
  std::int64_t bits = 0;
  for (int i = 0; i < 4; ++i)
    bits |= args.integer(kItemNumbers, 0, i) != 0 ? std::int64_t{1} << i : 0;
  return graph.set(shape.plug(kItemNumbers), bits);
}

/// The value of an option as its flag takes it, of every shape.
Result<mel::Value> optionValues(dg::Graph& graph, const Option& option,
                                const std::vector<dg::Node*>& shapes) {
  mel::IntArray whole;
  mel::FloatArray numbers;
  mel::StringArray texts;
  for (dg::Node* shape : shapes) {
    const dg::Plug plug = shape->plug(option.attribute);
    const auto value = graph.get(plug);
    if (!value) return failWith(value.error());
    const std::int64_t number = wholeNumber(graph, plug);
    const auto* real = std::get_if<double>(&*value);
    const auto* text = std::get_if<std::string>(&*value);
    switch (option.kind) {
      case Option::OnOff:
        whole.push_back(number != 0);
        break;
      case Option::Fixed:
        whole.push_back(number == option.fixed);
        break;
      case Option::Whole:
        whole.push_back(static_cast<std::int32_t>(number));
        break;
      case Option::Number:
        numbers.push_back(real ? *real : 0);
        break;
      case Option::Text:
        texts.push_back(text ? *text : fieldName(plug, number));
        break;
    }
  }
  if (option.kind == Option::Number) return mel::Value(std::move(numbers));
  return option.kind == Option::Text ? mel::Value(std::move(texts)) : mel::Value(std::move(whole));
}

/// What the first flag asks for, a value a shape.
CommandResult query(Context& context, const ParsedArgs& args,
                    const std::vector<dg::Node*>& shapes) {
  dg::Graph& graph = context.document.graph();
  for (const Option& option : kOptions)
    if (args.has(option.longName)) return optionValues(graph, option, shapes);
  if (!args.has(kItemNumbers)) return fail("polyOptions: say which option to query.");
  mel::IntArray shown;
  for (dg::Node* shape : shapes)
    for (int i = 0; i < 4; ++i)
      shown.push_back(
          static_cast<std::int32_t>(wholeNumber(graph, shape->plug(kItemNumbers)) >> i & 1));
  return mel::Value(std::move(shown));
}

CommandResult polyOptions(Context& context, const ParsedArgs& args) {
  std::vector<dg::Node*> shapes;
  if (args.has("global")) {
    for (const dg::NodePtr& node : context.document.graph().nodes())
      if (node->type().isA("mesh")) shapes.push_back(node.get());
  } else {
    auto list = args.resolveObjects(context.document);
    if (!list) return failWith(std::move(list.error()));
    for (const scene::SelectionItem& item : list->items())
      if (item.isDag())
        for (const scene::DagPath& path : nodes::meshPaths(item.path))
          shapes.push_back(path.node());
    if (shapes.empty()) return fail("polyOptions: name or select polygon objects.");
  }
  if (args.isQuery()) return query(context, args, shapes);
  for (dg::Node* shape : shapes) HOST_TRY(setOptions(context, args, *shape));
  return mel::Value();
}

ArgType argTypeOf(const Option& option) {
  switch (option.kind) {
    case Option::Number:
      return ArgType::Double;
    case Option::Text:
      return ArgType::String;
    case Option::Whole:
      return ArgType::Int;
    default:
      return ArgType::Bool;
  }
}

}  // namespace

void registerPolyOptions(CommandRegistry& registry) {
  Syntax syntax;
  for (const Option& option : kOptions) {
    syntax.flag(option.shortName, option.longName,
                option.kind == Option::Fixed ? std::vector<ArgType>{}
                                             : std::vector<ArgType>{argTypeOf(option)});
    if (option.kind == Option::OnOff) syntax.optionalArgs();  // alone it means on
  }
  syntax.flag("din", kItemNumbers, std::vector<ArgType>(4, ArgType::Bool))
      .flag("ao", "activeObjects")
      .flag("gl", "global")
      .flag("r", "relative")
      .queryable()
      .objects(0, -1, true);
  define(registry, "polyOptions", syntax, polyOptions);
}

}  // namespace host::builtins
