#include "modal_screen.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QShowEvent>

#include "catalogue.h"
#include "ini_picture.h"
#include "shared_values.h"
#include "trace.h"

namespace {

QColor FromVbColor(std::uint32_t c) {
  return QColor(static_cast<int>(c & 0xff), static_cast<int>((c >> 8) & 0xff),
                static_cast<int>((c >> 16) & 0xff));
}

}  // namespace

ModalScreen::ModalScreen(const QString& name, QWidget* parent) : QDialog(parent) {
  setObjectName(name);
  WriteTrace(QStringLiteral("0"), name, QStringLiteral("Form_Load Start"));
  setModal(true);
  // No help button in the title bar; the screens close through their own buttons.
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  const QString icon = GetIniPicturePath(QStringLiteral("VB_COMMON"), QStringLiteral("FORM_ICON"));
  if (!icon.isEmpty()) setWindowIcon(QIcon(icon));

  // Labels and panels take the form colour; entry fields keep their own.
  QPalette pal = palette();
  const std::uint32_t back = GetCommonFormBackColor();
  if (back != 0) pal.setColor(QPalette::Window, FromVbColor(back));
  setPalette(pal);
  setAutoFillBackground(true);
  // One font for the whole screen, large enough to read from a step back.
  QFont f = font();
  const QString family = GetCommonFontName();
  if (!family.isEmpty()) f.setFamilies({family, f.family()});
  if (f.pointSizeF() < 12) f.setPointSizeF(12);
  setFont(f);
}

ModalScreen::~ModalScreen() { restoreModalFlag(); }

void ModalScreen::showEvent(QShowEvent* event) {
  if (!flagRaised_) {
    // Nested screens (a user screen over a receive question) put back what they found.
    previousFlag_ = GetModalFormOpen();
    flagRaised_ = true;
    SetModalFormOpen(true);
  }
  QDialog::showEvent(event);
}

void ModalScreen::done(int result) {
  if (!unloaded_) {
    unloaded_ = true;
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("Form_Unload Start"));
  }
  restoreModalFlag();
  QDialog::done(result);
}

void ModalScreen::restoreModalFlag() {
  if (!flagRaised_) return;
  flagRaised_ = false;
  SetModalFormOpen(previousFlag_);
}

QLabel* ModalScreen::captionLabel(const char* name, const QString& section, const QString& key) {
  auto* label = new QLabel(GetIniCaption(section, key), this);
  label->setObjectName(QString::fromLatin1(name));
  return label;
}

QPushButton* ModalScreen::captionButton(const char* name, const QString& section, const QString& key) {
  auto* button = new QPushButton(GetIniCaption(section, key), this);
  button->setObjectName(QString::fromLatin1(name));
  button->setMinimumHeight(44);
  button->setMinimumWidth(140);
  return button;
}

QLabel* ModalScreen::dataLabel(const char* name) {
  auto* label = new QLabel(this);
  label->setObjectName(QString::fromLatin1(name));
  label->setTextFormat(Qt::PlainText);
  return label;
}

QLabel* ModalScreen::userIconLabel(const char* name, int iconIndex) {
  QLabel* label = dataLabel(name);
  label->setFixedSize(80, 80);
  label->setAlignment(Qt::AlignCenter);
  QPixmap picture;
  if (iconIndex >= 1 &&
      LoadIniPicture(QStringLiteral("VB_COMMON"), QStringLiteral("IMAGE_USERICON_%1").arg(iconIndex), picture))
    label->setPixmap(picture.scaled(72, 72, Qt::KeepAspectRatio, Qt::SmoothTransformation));
  return label;
}

QWidget* ModalScreen::nameRows(const QString& section, const std::array<const char*, 3>& captionNames,
                               const std::array<const char*, 3>& captionKeys,
                               const std::array<const char*, 3>& dataNames, const NameRows& names,
                               std::array<QLabel*, 3>& captions, std::array<QLabel*, 3>& values) {
  auto* box = new QWidget(this);
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(16);
  grid->setVerticalSpacing(8);
  const std::array<QString, 3> texts{names.first, names.middle, names.last};
  const std::array<bool, 3> visible{true, names.middleVisible, names.lastVisible};
  QFont big = font();
  big.setPointSizeF(big.pointSizeF() * 1.25);
  big.setBold(true);
  for (int i = 0; i < 3; ++i) {
    captions[i] = captionLabel(captionNames[i], section, QLatin1String(captionKeys[i]));
    values[i] = dataLabel(dataNames[i]);
    values[i]->setText(texts[i]);
    values[i]->setFont(big);
    grid->addWidget(captions[i], i, 0, Qt::AlignLeft | Qt::AlignVCenter);
    grid->addWidget(values[i], i, 1, Qt::AlignLeft | Qt::AlignVCenter);
    captions[i]->setVisible(visible[i]);
    values[i]->setVisible(visible[i]);
  }
  grid->setColumnStretch(1, 1);
  return box;
}

QWidget* ModalScreen::buttonRow(std::initializer_list<QPushButton*> buttons) {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 8, 0, 0);
  layout->setSpacing(12);
  layout->addStretch(1);
  for (QPushButton* b : buttons) layout->addWidget(b);
  return row;
}
