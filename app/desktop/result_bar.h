#pragma once

#include "core/conversion_run.h"

#include <QPushButton>
#include <QWidget>

namespace quarvel {

/// The buttons that lead on from a finished run.
class ResultBar : public QWidget {
  Q_OBJECT

 public:
  explicit ResultBar(QWidget* parent);

  /// Null while there is no result.
  void Show(const RunResult* result);

  QPushButton* CommandMissing() const { return missing_; }
  QPushButton* CommandReport() const { return report_; }
  QPushButton* CommandPreload() const { return preload_; }
  QPushButton* CommandOpenFolder() const { return folder_; }
  QPushButton* CommandOpenScene() const { return scene_; }

 private:
  QPushButton* missing_;
  QPushButton* report_;
  QPushButton* preload_;
  QPushButton* folder_;
  QPushButton* scene_;
};

/// How many files a run missed.
std::size_t MissingCount(const RunResult& result);

} // namespace quarvel
