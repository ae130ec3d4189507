#include "host/window/uv_panel.h"

#include <QMenuBar>
#include <QVBoxLayout>

#include "host/mel/literal.h"
#include "host/workspace/last_command.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

struct Entry {
  const char* label;  ///< none: a line between
  const char* line;   ///< the command and its words, none of them with blanks in it
};

constexpr Entry kCreate[] = {
    {"Automatic", "polyAutoProjection -lm 1 -l 2 -sc 1 -ps 0.2"},
    {"Planar, Best Plane", "polyProjection -ch 1 -type planar -ibd on -md b"},
    {"Planar, as the Camera Sees", "polyProjection -ch 1 -type planar -ibd on -md c"},
    {"Cylindrical", "polyProjection -ch 1 -type cylindrical -ibd on -sf on"},
    {"Spherical", "polyProjection -ch 1 -type spherical -ibd on -sf on"},
    {},
    {"Normalize", "performPolyNormalizeUV 0"},
    {"Unitize", "performPolyUnitizeUV 0"},
    {"Delete UVs", "performPolyMapDel 0"},
};
constexpr Entry kEdit[] = {
    {"Cut Edges", "performPolyMapCut 0"},
    {"Sew Edges", "performPolyMapSew 0"},
    {"Move and Sew Edges", "performPolyMapSewMove 0"},
    {"Merge UVs", "performPolyMergeUV 0"},
    {},
    {"Unfold", "unfold"},
    {"Untangle", "untangleUV -r uniform -mri 20"},
    {"Straighten Border", "performPolyStraightenUVBorder 0"},
    {"Lay Out", "performPolyLayoutUV 0"},
    {"Lay Out Together", "polyMultiLayoutUV -lm 1 -sc 1 -rbf 1 -fr 1 -ps 0.2 -l 2"},
    {},
    {"Flip U", "polyFlipUV -flipType 0 -local on"},
    {"Flip V", "polyFlipUV -flipType 1 -local on"},
    {"Turn Left", "polyEditUVShell -rot on -a 90"},
    {"Turn Right", "polyEditUVShell -rot on -a -90"},
    {},
    {"Pin", "polyPinUV -value 1"},
    {"Unpin", "polyPinUV -op 1"},
    {"Unpin All", "polyPinUV -op 2"},
};

}  // namespace

UvPanel::UvPanel(Person& person, QWidget* parent)
    : QWidget(parent), person_(person), view_(new UvView(person, this)) {
  setObjectName("uvPanel");
  setAccessibleName("uvPanel");
  auto* bar = new QMenuBar(this);
  bar->setObjectName("uvMenus");
  const auto menu = [&](const QString& title, std::span<const Entry> entries) {
    QMenu* made = bar->addMenu(title);
    for (const Entry& entry : entries) {
      if (entry.label)
        addCommand(*made, entry.label, entry.line);
      else
        made->addSeparator();
    }
  };
  menu(tr("Create"), kCreate);
  menu(tr("Modify"), kEdit);
  QMenu* sets = bar->addMenu(tr("Sets"));
  connect(sets, &QMenu::aboutToShow, this, [this, sets] { fillSets(*sets); });
  QMenu* show = bar->addMenu(tr("Show"));
  connect(show, &QMenu::aboutToShow, this, [this, show] {
    show->clear();
    view_->fillShowMenu(*show);
  });
  auto* box = new QVBoxLayout(this);
  box->setContentsMargins(0, 0, 0, 0);
  box->setSpacing(0);
  box->addWidget(bar);
  box->addWidget(view_, 1);
}

void UvPanel::addCommand(QMenu& menu, const char* label, const char* line) {
  connect(menu.addAction(tr(label)), &QAction::triggered, this, [this, label, line] {
    std::vector<mel::Value> words = mel::plainWords(line);
    const std::string command = words.front().string();
    words.erase(words.begin());
    cmd::Session& session = person_.session();
    const bool isDone = person_.edit(command, [&]() -> Result<void> {
      HOST_TRY(session.callCommand(command, words));
      return {};
    });
    if (isDone)
      workspace::workspaceOf(session).kept<workspace::LastCommand>() = {line,
                                                                        tr(label).toStdString()};
  });
}

/// The UV sets of the meshes that show, the current one marked.
void UvPanel::fillSets(QMenu& menu) {
  menu.clear();
  for (const nodes::MeshItem& item : view_->shown()) {
    const std::string shape = item.path.partialName();
    menu.addSection(QString::fromStdString(item.path.transform().partialName()));
    for (int i = 0; i < item.mesh.uvSetCount(); ++i) {
      const std::string name = item.mesh.uvSet(i).name;
      QAction* action = menu.addAction(QString::fromStdString(name).replace("&", "&&"));
      action->setCheckable(true);
      action->setChecked(i == item.mesh.currentUvSet());
      connect(action, &QAction::triggered, this, [this, shape, name] {
        const mel::Value words[] = {mel::Value("-currentUVSet"), mel::Value("-uvSet"),
                                    mel::Value(name), mel::Value(shape)};
        person_.edit("polyUVSet", [&]() -> Result<void> {
          HOST_TRY(person_.session().callCommand("polyUVSet", words));
          return {};
        });
      });
    }
  }
  if (menu.isEmpty()) menu.addAction(tr("Nothing with UVs is selected"))->setEnabled(false);
}

}  // namespace host::window
