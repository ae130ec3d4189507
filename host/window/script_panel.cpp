#include "host/window/script_panel.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <QSplitter>
#include <QSyntaxHighlighter>
#include <QTextBlock>
#include <QVBoxLayout>

namespace host::window {
namespace {

/// Colours of the language: words of it, texts, variables, comments.
class Colours : public QSyntaxHighlighter {
 public:
  using QSyntaxHighlighter::QSyntaxHighlighter;

 protected:
  void highlightBlock(const QString& text) override {
    static const std::vector<std::pair<QRegularExpression, QColor>> rules = {
        {QRegularExpression(
             R"(\b(proc|global|int|float|string|vector|matrix|if|else|for|while|do|in|)"
             R"(switch|case|default|break|continue|return|true|false)\b)"),
         QColor(120, 170, 255)},
        {QRegularExpression(R"(\$[A-Za-z_]\w*)"), QColor(150, 215, 150)},
        {QRegularExpression(R"((?<=\s)-[A-Za-z]\w*)"), QColor(190, 170, 230)},
        {QRegularExpression(R"("(\\.|[^"\\])*")"), QColor(230, 190, 120)},
        {QRegularExpression(R"(//.*$)"), QColor(140, 145, 150)},
    };
    for (const auto& [pattern, colour] : rules)
      for (auto found = pattern.globalMatch(text); found.hasNext();) {
        const auto match = found.next();
        setFormat(static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()),
                  colour);
      }
  }
};

}  // namespace

ScriptPanel::ScriptPanel(Person& person, QWidget* parent)
    : QWidget(parent),
      person_(person),
      history_(new QPlainTextEdit(this)),
      input_(new QPlainTextEdit(this)) {
  const QFont font("monospace");
  for (QPlainTextEdit* text : {history_, input_}) {
    text->setFont(font);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
  }
  history_->setReadOnly(true);
  history_->setMaximumBlockCount(5000);
  history_->setAccessibleName("scriptHistory");
  input_->setObjectName("scriptInput");
  input_->setAccessibleName("scriptInput");
  input_->setPlaceholderText(tr("MEL; Ctrl+Return runs the selection, or all of it"));
  new Colours(input_->document());
  auto* split = new QSplitter(Qt::Vertical, this);
  split->addWidget(history_);
  split->addWidget(input_);
  auto* box = new QVBoxLayout(this);
  box->setContentsMargins(0, 0, 0, 0);
  box->addWidget(split);
  auto* shortcut = new QShortcut(QKeySequence("Ctrl+Return"), input_);
  shortcut->setContext(Qt::WidgetShortcut);
  connect(shortcut, &QShortcut::activated, this, [this] { run(); });
}

void ScriptPanel::say(MessageKind kind, std::string_view text) {
  QString line = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  QTextCharFormat format;
  if (kind == MessageKind::Error) format.setForeground(QColor(255, 110, 100));
  if (kind == MessageKind::Warning) format.setForeground(QColor(230, 190, 80));
  if (kind == MessageKind::Result) format.setForeground(QColor(150, 200, 150));
  if (kind != MessageKind::Print)
    line = (kind == MessageKind::Error     ? "// Error: "
            : kind == MessageKind::Warning ? "// Warning: "
            : kind == MessageKind::Result  ? "// Result: "
                                           : "// ") +
           line + " //\n";
  QTextCursor end(history_->document());
  end.movePosition(QTextCursor::End);
  end.insertText(line, format);
  history_->setTextCursor(end);
}

void ScriptPanel::run() {
  const QTextCursor cursor = input_->textCursor();
  const bool hasSelection = cursor.hasSelection();
  const QString text = hasSelection ? cursor.selectedText().replace(QChar::ParagraphSeparator, '\n')
                                    : input_->toPlainText();
  if (text.trimmed().isEmpty()) return;
  say(MessageKind::Print, (text + "\n").toStdString());
  const auto done = person_.session().executeLine(text.toStdString(), {.display = true});
  if (done) {
    if (!hasSelection) input_->clear();
    return;
  }
  // The line that the error names.
  static const QRegularExpression place("^[Ll]ine (\\d+)");
  const auto match = place.match(QString::fromStdString(done.error().message));
  if (!match.hasMatch() || hasSelection) return;
  const QTextBlock block = input_->document()->findBlockByNumber(match.captured(1).toInt() - 1);
  if (!block.isValid()) return;
  QTextCursor at(block);
  at.select(QTextCursor::LineUnderCursor);
  input_->setTextCursor(at);
}

}  // namespace host::window
