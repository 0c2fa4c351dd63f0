#include "app/desktop/result_bar.h"

#include <QHBoxLayout>
#include <QStyle>

namespace quarvel {

namespace {

QPushButton* MakeButton(const QString& name, const QString& text, const QString& tip, QWidget* parent) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setStatusTip(tip);
  return button;
}

} // namespace

ResultBar::ResultBar(QWidget* parent)
    : QWidget(parent), missing_(MakeButton(QStringLiteral("CommandMissing"), {},
                                           QStringLiteral("What the level refers to and was not found"), this)),
      report_(MakeButton(QStringLiteral("CommandReport"), QStringLiteral("&Report..."),
                         QStringLiteral("What was written, and what was left out and why"), this)),
      preload_(MakeButton(QStringLiteral("CommandPreload"), QStringLiteral("Preload script..."),
                          QStringLiteral("The script that preloads the images of the scene"), this)),
      folder_(MakeButton(QStringLiteral("CommandOpenFolder"), QStringLiteral("Open folder"),
                         QStringLiteral("Show the folder of the scene"), this)),
      scene_(MakeButton(QStringLiteral("CommandOpenScene"), QStringLiteral("Open scene"),
                        QStringLiteral("Open the scene in the desktop's viewer"), this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins({});
  row->addWidget(missing_);
  row->addWidget(report_);
  row->addWidget(preload_);
  row->addStretch();
  row->addWidget(folder_);
  row->addWidget(scene_);
  Show(nullptr);
}

void ResultBar::Show(const RunResult* result) {
  const std::size_t missing = result ? MissingCount(*result) : 0;
  const bool hasPage = result && !result->Page.empty();
  const bool hasFiles = hasPage || (result && !result->Scene.Text.empty());
  missing_->setText(missing == 0 ? QStringLiteral("&Missing files...")
                                 : QStringLiteral("&Missing files (%1)...").arg(missing));
  missing_->setEnabled(missing > 0);
  report_->setEnabled(result && !result->InputFile.empty());
  preload_->setEnabled(result && !result->PreloadScript.empty());
  scene_->setText(hasPage ? QStringLiteral("Open page") : QStringLiteral("Open scene"));
  scene_->setToolTip(hasPage ? QStringLiteral("Open the page in the browser")
                             : QStringLiteral("Open the scene in the desktop's viewer"));
  scene_->setStatusTip(scene_->toolTip());
  folder_->setEnabled(hasFiles);
  scene_->setEnabled(hasFiles);
}

std::size_t MissingCount(const RunResult& result) {
  std::size_t count = 0;
  for (const std::vector<std::string>& names : result.Missing)
    count += names.size();
  return count;
}

} // namespace quarvel
