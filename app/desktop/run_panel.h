#pragma once

#include "app/desktop/picture_texture.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

namespace quarvel {

/// Shows how far a run is, and holds the buttons that start, pause and stop it.
class RunPanel : public QWidget {
  Q_OBJECT

 public:
  explicit RunPanel(QWidget* parent);

  void ShowPass(const QString& text);
  void ShowItem(const QString& text);
  void ShowFraction(double done);
  void ShowUniqueMaterials(int count);
  void ShowRunning(bool running); ///< which buttons can be used

  PictureTexture* Picture() const { return picture_; }
  QPushButton* CommandGo() const { return go_; }
  QPushButton* CommandForWeb() const { return forWeb_; }
  QPushButton* CommandPause() const { return pause_; }
  QPushButton* CommandStop() const { return stop_; }

 private:
  QWidget* MakeButtons();

  PictureTexture* picture_;
  QLabel* labelPos_;
  QLabel* labelProgress_;
  QLabel* labelUniqueMaterials_;
  QProgressBar* progress_;
  QPushButton* go_ = nullptr;
  QPushButton* forWeb_ = nullptr;
  QPushButton* pause_ = nullptr;
  QPushButton* stop_ = nullptr;
};

} // namespace quarvel
