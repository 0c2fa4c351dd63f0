#include "app/desktop/batch_table.h"

#include "app/desktop/message_text.h"
#include "app/desktop/qt_text.h"
#include "app/desktop/result_bar.h"
#include "core/run_summary.h"

#include <QHeaderView>
#include <QStyle>

namespace quarvel {

namespace {

enum Column { LevelColumn, StateColumn, ContentColumn, MissingColumn, TimeColumn };

QString MissingText(const RunResult& result) {
  const std::size_t missing = MissingCount(result);
  return missing == 0 ? QString() : QString::number(missing);
}

} // namespace

BatchTable::BatchTable(QWidget* parent) : QTreeWidget(parent) {
  setObjectName(QStringLiteral("ListBatch"));
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setHeaderLabels({QStringLiteral("Level"), QStringLiteral("Result"), QStringLiteral("Content"),
                   QStringLiteral("Missing"), QStringLiteral("Time")});
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(StateColumn, QHeaderView::Stretch);
  setMinimumHeight(90);
  connect(this, &QTreeWidget::currentItemChanged, this,
          [this](QTreeWidgetItem* item) { emit RowChosen(indexOfTopLevelItem(item)); });
}

void BatchTable::Begin(const std::vector<ConversionJob>& jobs) {
  clear();
  at_ = -1;
  for (const ConversionJob& job : jobs) {
    auto* row = new QTreeWidgetItem(this, {ToQString(job.InFile.filename()), QStringLiteral("Waiting")});
    row->setToolTip(LevelColumn, ToQString(job.InFile));
    row->setTextAlignment(MissingColumn, Qt::AlignRight | Qt::AlignVCenter);
    row->setTextAlignment(TimeColumn, Qt::AlignRight | Qt::AlignVCenter);
  }
  resizeColumnToContents(LevelColumn);
  setColumnWidth(LevelColumn, columnWidth(LevelColumn) + 24);
  setColumnWidth(ContentColumn, 240);
}

void BatchTable::ShowStarted() {
  QTreeWidgetItem* row = topLevelItem(++at_);
  if (!row) return;
  row->setText(StateColumn, QStringLiteral("Converting"));
  row->setIcon(StateColumn, style()->standardIcon(QStyle::SP_MediaPlay));
  scrollToItem(row);
}

void BatchTable::ShowFinished(const RunResult& result) {
  QTreeWidgetItem* row = topLevelItem(at_);
  if (!row) return;
  const bool isDone = result.Outcome == RunOutcome::Done;
  const bool isStopped = result.Outcome == RunOutcome::Stopped;
  row->setText(StateColumn, isDone      ? QStringLiteral("Done")
                            : isStopped ? QStringLiteral("Stopped")
                                        : WithCaptions(ToQString(result.Reason)));
  row->setToolTip(StateColumn, result.Error.empty() ? row->text(StateColumn) : WithCaptions(ToQString(result.Error)));
  row->setIcon(StateColumn, style()->standardIcon(isDone      ? QStyle::SP_DialogApplyButton
                                                  : isStopped ? QStyle::SP_MediaStop
                                                              : QStyle::SP_MessageBoxCritical));
  if (!isDone) return;
  row->setText(ContentColumn, ToQString(ContentText(result)));
  row->setText(MissingColumn, MissingText(result));
  row->setText(TimeColumn, ToQString(SecondsText(result.Seconds)));
}

void BatchTable::End() {
  for (int i = at_ + 1; i < topLevelItemCount(); ++i)
    topLevelItem(i)->setText(StateColumn, QStringLiteral("Not converted"));
  if (at_ >= 0) setCurrentItem(topLevelItem(at_));
}

} // namespace quarvel
