#pragma once

#include "core/batch.h"

#include <QTreeWidget>

namespace quarvel {

/// One row for each file of a batch.
class BatchTable : public QTreeWidget {
  Q_OBJECT

 public:
  explicit BatchTable(QWidget* parent);

  void Begin(const std::vector<ConversionJob>& jobs);
  void ShowStarted();
  void ShowFinished(const RunResult& result);
  /// The rows that are left were not converted.
  void End();

 signals:
  void RowChosen(int row);

 private:
  int at_ = -1;
};

} // namespace quarvel
