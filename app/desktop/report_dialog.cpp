#include "app/desktop/report_dialog.h"

#include "app/desktop/message_text.h"
#include "app/desktop/qt_text.h"
#include "core/run_summary.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <sstream>

namespace quarvel {

namespace {

QString FullSummary(const RunResult& result) {
  std::ostringstream text;
  WriteSummary(text, result, SummaryLength::Full);
  return ToQString(text.str());
}

QString HeadText(const RunResult& result) {
  QString text = ToQString(ContentText(result)) + QStringLiteral(" in ") + ToQString(SecondsText(result.Seconds));
  if (!IsEmpty(result.Bounds)) text += QStringLiteral("\nBox: ") + ToQString(BoxText(result.Bounds));
  return result.Error.empty() || !result.FailedFiles.empty() ? text : WithCaptions(ToQString(result.Error));
}

} // namespace

ReportDialog::ReportDialog(const RunResult& result, QWidget* parent) : QDialog(parent), list_(new QTreeWidget(this)) {
  setObjectName(QStringLiteral("FormReport"));
  setWindowTitle(QStringLiteral("Report on %1").arg(ToQString(result.InputFile.filename())));
  list_->setObjectName(QStringLiteral("ListReport"));
  list_->setHeaderHidden(true);
  list_->setUniformRowHeights(true);
  list_->setTextElideMode(Qt::ElideMiddle); // of paths, both ends matter
  FillIn(result);
  QLabel* head = MakeWrappedLabel(HeadText(result), this);
  head->setObjectName(QStringLiteral("LabelContent"));
  auto* filter = new QLineEdit(this);
  filter->setObjectName(QStringLiteral("TextFilter"));
  filter->setPlaceholderText(QStringLiteral("Show only what has this in it, such as an actor's name"));
  filter->setClearButtonEnabled(true);
  connect(filter, &QLineEdit::textChanged, this, &ReportDialog::Filter);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
  copy->setObjectName(QStringLiteral("CommandCopy"));
  connect(copy, &QPushButton::clicked, this,
          [text = FullSummary(result)] { QApplication::clipboard()->setText(text); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  EnterCloses(buttons);
  auto* column = new QVBoxLayout(this);
  column->addWidget(head);
  column->addWidget(filter);
  column->addWidget(list_, 1);
  column->addWidget(buttons);
  list_->setFocus();
  resize(680, 480);
}

void ReportDialog::FillIn(const RunResult& result) {
  QStringList failed, files, counts, messages;
  for (const std::string& file : result.FailedFiles)
    failed.append(ToQString(file));
  for (const std::string& message : result.Messages)
    messages.append(WithCaptions(ToQString(message)));
  for (const std::filesystem::path& file : result.FilesWritten)
    files.append(ToQString(file));
  for (const auto& [what, counted] : result.Findings.Counts())
    counts.append(WithCaptions(ToQString(what + ": " + std::to_string(counted.Count))));
  if (!failed.isEmpty()) AddGroup(QStringLiteral("Files not written"), failed);
  if (!files.isEmpty()) AddGroup(QStringLiteral("Files written"), files);
  if (!messages.isEmpty()) AddGroup(QStringLiteral("Messages"), messages);
  if (!counts.isEmpty()) AddGroup(QStringLiteral("Left out"), counts);
  for (const ActorsOfReason& group : GroupByReason(result.Findings.Findings())) {
    QStringList actors;
    for (const std::string& actor : group.Actors)
      actors.append(ToQString(actor));
    QTreeWidgetItem* top = AddGroup(WithCaptions(ToQString(group.Reason)), actors);
    if (actors.size() > 1) top->setText(0, top->text(0) + QStringLiteral(" (%1)").arg(actors.size()));
  }
}

QTreeWidgetItem* ReportDialog::AddGroup(const QString& title, const QStringList& lines) {
  QString capital = title;
  if (!capital.isEmpty()) capital[0] = capital[0].toUpper();
  auto* top = new QTreeWidgetItem(list_, {capital});
  top->setToolTip(0, capital);
  for (const QString& line : lines)
    (new QTreeWidgetItem(top, {line}))->setToolTip(0, line);
  constexpr qsizetype unfolded = 12;
  top->setExpanded(lines.size() <= unfolded);
  return top;
}

void ReportDialog::Filter(const QString& text) {
  for (int i = 0; i < list_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* top = list_->topLevelItem(i);
    const bool wholeGroup = top->text(0).contains(text, Qt::CaseInsensitive);
    bool any = wholeGroup;
    for (int j = 0; j < top->childCount(); ++j) {
      const bool shown = wholeGroup || top->child(j)->text(0).contains(text, Qt::CaseInsensitive);
      top->child(j)->setHidden(!shown);
      any = any || shown;
    }
    top->setHidden(!any);
    if (!text.isEmpty() && any) top->setExpanded(true);
  }
}

} // namespace quarvel
