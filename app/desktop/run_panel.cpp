#include "app/desktop/run_panel.h"

#include <QGridLayout>
#include <QStyle>
#include <algorithm>

namespace quarvel {

namespace {

constexpr int progressSteps = 1000;

QLabel* MakeStatusLabel(const QString& name, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // A long text must not widen the window.
  label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  return label;
}

QPushButton* MakeButton(const QString& name, const QString& text, QStyle::StandardPixmap icon, const QString& tip,
                        QWidget* parent) {
  auto* button = new QPushButton(parent->style()->standardIcon(icon), text, parent);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setStatusTip(tip);
  return button;
}

} // namespace

RunPanel::RunPanel(QWidget* parent)
    : QWidget(parent), picture_(new PictureTexture(this)), labelPos_(MakeStatusLabel(QStringLiteral("LabelPos"), this)),
      labelProgress_(MakeStatusLabel(QStringLiteral("LabelProgress"), this)),
      labelUniqueMaterials_(MakeStatusLabel(QStringLiteral("LabelUniqueMaterials"), this)),
      progress_(new QProgressBar(this)) {
  progress_->setObjectName(QStringLiteral("ProgressRun"));
  progress_->setRange(0, progressSteps);
  QFont bold = labelPos_->font();
  bold.setBold(true);
  labelPos_->setFont(bold);
  auto* status = new QVBoxLayout;
  for (QWidget* widget : {static_cast<QWidget*>(labelPos_), static_cast<QWidget*>(labelProgress_),
                          static_cast<QWidget*>(progress_), static_cast<QWidget*>(labelUniqueMaterials_)})
    status->addWidget(widget);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins({});
  row->setSpacing(12);
  row->addWidget(picture_);
  row->addLayout(status, 1);
  row->addWidget(MakeButtons());
  ShowUniqueMaterials(0);
  ShowRunning(false);
}

QWidget* RunPanel::MakeButtons() {
  auto* box = new QWidget(this);
  go_ = MakeButton(QStringLiteral("CommandGo"), QStringLiteral("Con&vert"), QStyle::SP_MediaPlay,
                   QStringLiteral("Convert the level (F5)"), box);
  forWeb_ = MakeButton(QStringLiteral("CommandForWeb"), QStringLiteral("For the &web"), QStyle::SP_DriveNetIcon,
                       QStringLiteral("Set the options that make the best page to walk in, one HTML file"), box);
  pause_ = MakeButton(QStringLiteral("CommandPause"), QStringLiteral("&Pause"), QStyle::SP_MediaPause,
                      QStringLiteral("Pause at the next brush or mover, or go on (F6)"), box);
  stop_ = MakeButton(QStringLiteral("CommandStop"), QStringLiteral("S&top"), QStyle::SP_MediaStop,
                     QStringLiteral("Stop the conversion (Esc)"), box);
  QFont font = go_->font();
  font.setBold(true);
  go_->setFont(font);
  go_->setMinimumHeight(go_->sizeHint().height() * 3 / 2);
  go_->setMinimumWidth(150);
  forWeb_->setMinimumHeight(go_->minimumHeight());
  pause_->setCheckable(true);
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins({});
  grid->addWidget(go_, 0, 0, 1, 2);
  grid->addWidget(forWeb_, 0, 2);
  grid->addWidget(pause_, 1, 0);
  grid->addWidget(stop_, 1, 1);
  return box;
}

void RunPanel::ShowPass(const QString& text) { labelPos_->setText(text); }

void RunPanel::ShowItem(const QString& text) {
  labelProgress_->setText(text);
  labelProgress_->setToolTip(text);
}

void RunPanel::ShowFraction(double done) {
  progress_->setValue(static_cast<int>(std::clamp(done, 0.0, 1.0) * progressSteps));
}

void RunPanel::ShowUniqueMaterials(int count) {
  labelUniqueMaterials_->setText(QStringLiteral("Unique Materials: %1").arg(count));
}

void RunPanel::ShowRunning(bool running) {
  go_->setEnabled(!running);
  forWeb_->setEnabled(!running);
  pause_->setEnabled(running);
  stop_->setEnabled(running);
  pause_->setChecked(false);
}

} // namespace quarvel
