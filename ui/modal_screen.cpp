#include "ui/modal_screen.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QShowEvent>

#include "frame/catalogue.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/ini_picture.h"

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
  const QPixmap picture = userIcon(iconIndex, 72);
  if (!picture.isNull()) label->setPixmap(picture);
  return label;
}

QPixmap ModalScreen::userIcon(int iconIndex, int size) {
  QPixmap picture;
  if (iconIndex < 1 ||
      !LoadIniPicture(QStringLiteral("VB_COMMON"), QStringLiteral("IMAGE_USERICON_%1").arg(iconIndex), picture))
    return QPixmap();
  const qreal ratio = qApp->devicePixelRatio();
  const int pixels = qRound(size * ratio);
  picture = picture.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(ratio);
  return picture;
}

QHBoxLayout* ModalScreen::userNameRows(const QString& section, const NameRowNames& controls, int iconIndex,
                                       const NameRows& names, const std::array<QLabel**, 3>& captions,
                                       const std::array<QLabel**, 3>& values) {
  auto* row = new QHBoxLayout;
  row->setSpacing(16);
  row->addWidget(userIconLabel(controls.icon, iconIndex), 0, Qt::AlignVCenter);
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(16);
  grid->setVerticalSpacing(8);
  const std::array<QString, 3> texts{names.first, names.middle, names.last};
  const std::array<bool, 3> visible{true, names.middleVisible, names.lastVisible};
  QFont big = font();
  big.setPointSizeF(big.pointSizeF() * 1.25);
  big.setBold(true);
  for (size_t i = 0; i < 3; ++i) {
    QLabel* caption = captionLabel(controls.captions[i], section, QLatin1String(controls.captionKeys[i]));
    QLabel* value = dataLabel(controls.values[i]);
    value->setText(texts[i]);
    value->setFont(big);
    grid->addWidget(caption, static_cast<int>(i), 0, Qt::AlignLeft | Qt::AlignBaseline);
    grid->addWidget(value, static_cast<int>(i), 1, Qt::AlignLeft | Qt::AlignBaseline);
    caption->setVisible(visible[i]);
    value->setVisible(visible[i]);
    *captions[i] = caption;
    *values[i] = value;
  }
  grid->setColumnStretch(1, 1);
  row->addLayout(grid, 1);
  return row;
}

QHBoxLayout* UserNameScreen::nameRowsOf(const QString& section, int iconIndex, const NameRows& names) {
  static const NameRowNames kNames{"imgUserIcon",
                                   {"lblFN", "lblMN", "lblLN"},
                                   {"CAPTION_LBLFN", "CAPTION_LBLMN", "CAPTION_LBLLN"},
                                   {"lblFNData", "lblMNData", "lblLNData"}};
  // The honorific is part of the laid-out name; its own label stays out of sight.
  lblSama = captionLabel("lblSama", section, QStringLiteral("CAPTION_LBLSAMA"));
  lblSama->hide();
  return userNameRows(section, kNames, iconIndex, names, {&lblFN, &lblMN, &lblLN},
                      {&lblFNData, &lblMNData, &lblLNData});
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
