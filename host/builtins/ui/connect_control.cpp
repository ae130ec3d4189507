// connectControl: a field and an attribute that show the same number.
#include <algorithm>

#include "host/builtins/ui/control_values.h"
#include "host/cmd/plug_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::workspaceOf;

/// Follows the fields and the attributes that scripts tied together, in both directions.
class ConnectedControls final : public dg::GraphObserver {
 public:
  ConnectedControls() = default;
  ~ConnectedControls() override {
    if (session_) session_->document().graph().removeObserver(this);
  }
  ConnectedControls(const ConnectedControls&) = delete;
  ConnectedControls& operator=(const ConnectedControls&) = delete;

  Result<void> tie(cmd::Session& session, ui::Control& control, const std::string& field,
                   const dg::Plug& plug) {
    if (!session_) {
      session_ = &session;
      session.document().graph().addObserver(this);
      changed_ = workspaceOf(session).controls.changed.connect(
          [this](const ui::Control& which, ui::ControlChange change) { told(which, change); });
    }
    std::erase_if(ties_, [&](const Tie& tie) {
      return tie.control == ui::Tree::path(control) && tie.field == field;
    });
    ties_.push_back({ui::Tree::path(control), field, plug.node()->weak_from_this(), plug});
    return show(ties_.back());
  }

 private:
  struct Tie {
    std::string control, field;
    std::weak_ptr<dg::Node> node;
    dg::Plug plug;
  };

  Result<void> show(const Tie& tie) {
    ui::Tree& tree = workspaceOf(*session_).controls;
    const auto control = tree.find(tie.control);
    if (!control) return {};
    const auto value =
        cmd::readPlug(session_->document().graph(), session_->document().units(), tie.plug);
    if (!value) return failWith(value.error());
    ui::Values values;
    if (value->type() == mel::Type::FloatArray) {
      for (const double number : value->floatArray()) values.emplace_back(number);
    } else if (value->type() == mel::Type::IntArray) {
      for (const std::int32_t number : value->intArray()) values.emplace_back(number);
    } else {
      values.push_back(toAtom(*value));
    }
    const ui::Attribute* attribute = (*control)->type->find(tie.field);
    if (!attribute) return {};
    isAtWork_ = true;
    auto done = tree.set(**control, *attribute, values);
    isAtWork_ = false;
    return done;
  }

  void attributeEvent(dg::AttributeEvent event, const dg::Plug& plug, const dg::Plug&) override {
    if (event != dg::AttributeEvent::Set || isAtWork_) return;
    for (const Tie& tie : ties_) {
      const dg::NodePtr node = tie.node.lock();
      if (node && node->isAlive() && node.get() == plug.node() &&
          (tie.plug == plug || plug.parent() == tie.plug))
        (void)show(tie);
    }
  }

  /// A person changed a field: so does the attribute.
  void told(const ui::Control& control, ui::ControlChange change) {
    if (change == ui::ControlChange::Removing) {
      const std::string path = ui::Tree::path(control);
      std::erase_if(ties_, [&](const Tie& tie) {
        return tie.control == path || tie.control.starts_with(path + "|");
      });
      return;
    }
    if (change != ui::ControlChange::Changed || isAtWork_) return;
    const std::string path = ui::Tree::path(control);
    for (const Tie& tie : std::vector<Tie>(ties_)) {
      const dg::NodePtr node = tie.node.lock();
      if (tie.control != path || !node || !node->isAlive()) continue;
      const ui::Attribute* attribute = control.type->find(tie.field);
      if (!attribute) continue;
      const ui::Values shown = workspaceOf(*session_).controls.get(control, *attribute);
      if (shown.empty()) continue;
      std::vector<mel::Value> values;
      for (std::size_t i = 0; i < shown.size(); ++i)
        values.push_back(std::holds_alternative<std::string>(shown[i])
                             ? mel::Value(ui::asText(shown, i))
                             : mel::Value(ui::asReal(shown, i)));
      isAtWork_ = true;
      dg::Graph& graph = session_->document().graph();
      if (graph.settable(tie.plug))
        (void)cmd::writeNumbers(graph, session_->document().units(), tie.plug, values);
      isAtWork_ = false;
    }
  }

  cmd::Session* session_ = nullptr;
  Connection changed_;
  std::vector<Tie> ties_;
  bool isAtWork_ = false;
};

/// The flag of a kind of control that holds what it shows.
std::string fieldOf(const ui::Control& control, int index) {
  if (index > 1 || control.type->name.ends_with("FieldGrp")) {
    const std::string numbered = fmt::format("value{}", std::max(1, index - 1));
    if (control.type->find(numbered)) return numbered;
  }
  for (const char* name : {"value", "rgbValue", "text", "select"})
    if (control.type->find(name)) return name;
  return {};
}

CommandResult connectControl(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  ui::Tree& tree = workspaceOf(context.session).controls;
  const auto control = tree.find(words[0]);
  if (!control) return fail("connectControl: {}", control.error().message);
  for (std::size_t i = 1; i < words.size(); ++i) {
    auto plug = context.document.plug(words[i]);
    if (!plug) return fail("connectControl: {}", plug.error().message);
    const int index = args.has("index") ? args.integer("index") : static_cast<int>(i) + 1;
    const std::string field = fieldOf(**control, words.size() > 2 || args.has("index") ? index : 2);
    if (field.empty()) return fail("connectControl: a {} shows no value.", (*control)->type->name);
    HOST_TRY(workspaceOf(context.session)
                 .kept<ConnectedControls>()
                 .tie(context.session, **control, field, *plug));
  }
  return mel::Value();
}

}  // namespace

void registerConnectControl(CommandRegistry& registry) {
  defineQuery(registry, "connectControl",
              Syntax()
                  .flag("in", "index", {ArgType::Int})
                  .flag("fi", "fileName")
                  .flag("pcm", "preventContextualMenu")
                  .flag("po", "preventOverride")
                  .strings(2),
              connectControl);
}

}  // namespace host::builtins
