#include "host/window/dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "host/window/layout_window.h"
#include "host/workspace/dialog_hooks.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using workspace::DialogHooks;
using workspace::Dialogs;
using workspace::workspaceOf;

QString plain(const std::string& text) {
  return QString::fromStdString(text);
}

QString labelOf(const std::string& button) {
  return plain(button).replace("&", "&&");
}

/// A text to be typed, and the script's own buttons.
Dialogs::Answer askText(QWidget& over, const Dialogs::Question& question) {
  Dialogs::Answer answer;
  QDialog box(&over);
  box.setObjectName("promptDialog");
  box.setWindowTitle(plain(question.title));
  auto* rows = new QVBoxLayout(&box);
  rows->addWidget(new QLabel(plain(question.message), &box));
  auto* field = new QLineEdit(plain(question.text), &box);
  field->setObjectName("promptText");
  field->selectAll();
  rows->addWidget(field);
  auto* line = new QHBoxLayout;
  line->addStretch(1);
  rows->addLayout(line);
  const std::vector<std::string> labels =
      question.buttons.empty() ? std::vector<std::string>{"Confirm"} : question.buttons;
  for (const std::string& label : labels) {
    auto* button = new QPushButton(labelOf(label), &box);
    button->setObjectName(plain(label));
    button->setDefault(label == question.defaultButton ||
                       (question.defaultButton.empty() && label == labels.front()));
    button->setAutoDefault(button->isDefault());
    QObject::connect(button, &QPushButton::clicked, &box, [&answer, &box, label] {
      answer.button = label;
      box.accept();
    });
    line->addWidget(button);
  }
  box.setMinimumWidth(280);
  field->setFocus();
  box.exec();
  answer.text = field->text().toStdString();
  return answer;
}

Dialogs::Answer ask(QWidget& over, const Dialogs::Question& question) {
  if (question.wantsText) return askText(over, question);
  Dialogs::Answer answer;
  QMessageBox box(QMessageBox::NoIcon, plain(question.title), plain(question.message),
                  QMessageBox::NoButton, &over);
  std::vector<std::pair<QPushButton*, std::string>> buttons;
  for (const std::string& label :
       question.buttons.empty() ? std::vector<std::string>{"Confirm"} : question.buttons) {
    QPushButton* button = box.addButton(labelOf(label), QMessageBox::AcceptRole);
    button->setObjectName(plain(label));
    if (label == question.defaultButton) box.setDefaultButton(button);
    buttons.emplace_back(button, label);
  }
  // Closing it is no answer of its buttons.
  box.setEscapeButton(box.addButton(QMessageBox::Cancel));
  box.button(QMessageBox::Cancel)->hide();
  box.exec();
  for (const auto& [button, label] : buttons)
    if (box.clickedButton() == button) answer.button = label;
  return answer;
}

DialogHooks::FileAnswer askFiles(QWidget& over, const DialogHooks::FileQuestion& question) {
  constexpr int kWrite = 0, kFolder = 2, kFolderOnly = 3, kSeveral = 4;
  QFileDialog dialog(&over, plain(question.caption), plain(question.folder));
  dialog.setObjectName("fileDialog");
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  const bool isFolder = question.mode == kFolder || question.mode == kFolderOnly;
  dialog.setFileMode(isFolder                    ? QFileDialog::Directory
                     : question.mode == kWrite   ? QFileDialog::AnyFile
                     : question.mode == kSeveral ? QFileDialog::ExistingFiles
                                                 : QFileDialog::ExistingFile);
  dialog.setAcceptMode(question.mode == kWrite ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setOption(QFileDialog::ShowDirsOnly, question.mode == kFolderOnly);
  if (!question.filters.empty() && !isFolder) dialog.setNameFilter(plain(question.filters));
  if (!question.filter.empty() && !isFolder) dialog.selectNameFilter(plain(question.filter));
  if (!question.okCaption.empty())
    dialog.setLabelText(QFileDialog::Accept, plain(question.okCaption));
  DialogHooks::FileAnswer answer;
  if (dialog.exec() != QDialog::Accepted) return answer;
  for (const QString& file : dialog.selectedFiles()) answer.files.push_back(file.toStdString());
  answer.filter = dialog.selectedNameFilter().toStdString();
  return answer;
}

}  // namespace

/// The window of progressWindow. The script that runs never comes back to the window's loop, so the
/// box lets through what it needs itself.
class DialogHost::ProgressBox : public QDialog {
 public:
  ProgressBox(Person& person, QWidget* over) : QDialog(over), person_(person) {
    setObjectName("progressWindow");
    auto* rows = new QVBoxLayout(this);
    status_ = new QLabel(this);
    bar_ = new QProgressBar(this);
    cancel_ = new QPushButton(QObject::tr("Cancel"), this);
    cancel_->setObjectName("cancel");
    rows->addWidget(status_);
    rows->addWidget(bar_);
    rows->addWidget(cancel_, 0, Qt::AlignRight);
    setMinimumWidth(320);
    connect(cancel_, &QPushButton::pressed, this, [this] { isCancelled_ = true; });
  }
  void follow(Dialogs::Progress& progress) {
    setWindowTitle(plain(progress.title));
    status_->setText(plain(progress.status));
    bar_->setRange(progress.low, std::max(progress.high, progress.low + 1));
    bar_->setValue(progress.value);
    cancel_->setVisible(progress.isInterruptable);
    show();
    person_.isBusy = true;
    qApp->installEventFilter(this);
    QCoreApplication::processEvents();
    qApp->removeEventFilter(this);
    person_.isBusy = false;
    progress.isCancelled = progress.isCancelled || (isCancelled_ && progress.isInterruptable);
  }

 protected:
  void reject() override { isCancelled_ = true; }
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Timer) return true;
    const auto* widget = qobject_cast<QWidget*>(object);
    const bool isOwn = widget && (widget == this || isAncestorOf(widget));
    const bool isDropped =
        !isOwn && isPersonsEvent(*event) && (widget || event->type() == QEvent::Shortcut);
    if (isDropped) event->ignore();
    return isDropped;
  }

 private:
  Person& person_;
  QLabel* status_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  bool isCancelled_ = false;
};

DialogHost::DialogHost(Person& person, QWidget& over) : person_(person), over_(over) {
  Dialogs& dialogs = workspaceOf(person_.session()).dialogs;
  auto& hooks = workspaceOf(person_.session()).kept<DialogHooks>();
  dialogs.ask = [this](const Dialogs::Question& question) { return ask(over_, question); };
  hooks.askFiles = [this](const DialogHooks::FileQuestion& question) {
    return askFiles(over_, question);
  };
  hooks.showProgress = [this](Dialogs::Progress& progress) { showProgress(progress); };
  hooks.showModal = [this](const std::string& path, const std::function<bool()>& isDone) {
    showModal(path, isDone);
  };
}

DialogHost::~DialogHost() {
  Dialogs& dialogs = workspaceOf(person_.session()).dialogs;
  auto& hooks = workspaceOf(person_.session()).kept<DialogHooks>();
  dialogs.ask = {};
  hooks = {};
}

void DialogHost::showProgress(Dialogs::Progress& progress) {
  if (!progress.isOpen) return progress_.reset();
  if (!progress_) progress_ = std::make_unique<ProgressBox>(person_, &over_);
  progress_->follow(progress);
}

void DialogHost::showModal(const std::string& path, const std::function<bool()>& isDone) {
  const auto found = workspaceOf(person_.session()).controls.find(path);
  if (!found) return;
  const ui::Control* layout = nullptr;
  for (const auto& child : (*found)->children)
    if (child->isKind(ui::Kind::Layout)) layout = child.get();
  if (!layout) return;
  LayoutWindow window(person_, *layout, &over_);
  window.setWindowFlag(Qt::Dialog);
  window.setWindowModality(Qt::ApplicationModal);
  window.setWindowTitle(plain((*found)->text("title")));
  const ui::Size natural = ui::naturalSize(**found);
  window.resize(std::max(natural.width, 200), std::max(natural.height, 80));
  window.follow();
  window.show();
  QEventLoop loop;
  const Connection looking = person_.looked.connect([&](Person::Parts) {
    window.follow();
    if (isDone() || !window.isVisible()) loop.quit();
  });
  // A window that its person closes says so to nobody else.
  QTimer closing;
  QObject::connect(&closing, &QTimer::timeout, &loop, [&] {
    if (!window.isVisible()) loop.quit();
  });
  closing.start(100);
  loop.exec();
}

}  // namespace host::window
