#pragma once

#include "core/conversion_run.h"

#include <QDialog>
#include <QTreeWidget>

namespace quarvel {

/// Tells what a run has written, and what it left out and why, with the names of the actors.
class ReportDialog : public QDialog {
  Q_OBJECT

 public:
  ReportDialog(const RunResult& result, QWidget* parent);

 private:
  void FillIn(const RunResult& result);
  QTreeWidgetItem* AddGroup(const QString& title, const QStringList& lines);
  void Filter(const QString& text);

  QTreeWidget* list_;
};

} // namespace quarvel
