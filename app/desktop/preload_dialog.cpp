#include "app/desktop/preload_dialog.h"

#include "app/desktop/message_text.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QVBoxLayout>

namespace quarvel {

PreloadDialog::PreloadDialog(const QString& script, const QString& file, DesktopServices& services, QWidget* parent)
    : QDialog(parent), script_(script), file_(file), services_(services) {
  setObjectName(QStringLiteral("FormPreload"));
  setWindowTitle(QStringLiteral("Preload script"));
  auto* text = new QPlainTextEdit(script, this);
  text->setObjectName(QStringLiteral("TextScript"));
  text->setReadOnly(true);
  text->setLineWrapMode(QPlainTextEdit::NoWrap);
  text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  QLabel* label =
      MakeWrappedLabel(QStringLiteral("A web page that holds this script loads the images before it shows the "
                                      "scene. It was written to\n%1")
                           .arg(file),
                       this);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
  QPushButton* save = buttons->addButton(QStringLiteral("&Save as..."), QDialogButtonBox::ActionRole);
  copy->setObjectName(QStringLiteral("CommandCopy"));
  save->setObjectName(QStringLiteral("CommandSave"));
  connect(copy, &QPushButton::clicked, this, [this] { QApplication::clipboard()->setText(script_); });
  connect(save, &QPushButton::clicked, this, &PreloadDialog::Save);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  EnterCloses(buttons);
  auto* column = new QVBoxLayout(this);
  column->addWidget(label);
  column->addWidget(text, 1);
  column->addWidget(buttons);
  resize(640, 420);
}

void PreloadDialog::Save() {
  const QString chosen = services_.ChooseFileToSave(this, QStringLiteral("Save the preload script"), file_,
                                                    QStringLiteral("Scripts (*.js);;All files (*)"));
  if (chosen.isEmpty()) return;
  QSaveFile file(chosen);
  if (file.open(QIODevice::WriteOnly) && file.write(script_.toUtf8()) >= 0 && file.commit()) return;
  auto* box = new QMessageBox(QMessageBox::Critical, windowTitle(),
                              Wrappable(QStringLiteral("%1 cannot be written: %2").arg(chosen, file.errorString())),
                              QMessageBox::Ok, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

} // namespace quarvel
