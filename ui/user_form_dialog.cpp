#include "ui/user_form_dialog.h"

#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>

#include "frame/catalogue.h"

namespace {

// Applies a filter on every change of a field's text, keeping the cursor near where it was.
void FilterOnChange(QLineEdit* edit, std::function<QString(const QString&)> filter) {
  QObject::connect(edit, &QLineEdit::textChanged, edit, [edit, filter = std::move(filter)](const QString& text) {
    const QString kept = filter(text);
    if (kept == text) return;
    const int cursor = edit->cursorPosition() - static_cast<int>(text.size() - kept.size());
    edit->setText(kept);
    edit->setCursorPosition(qBound(0, cursor, static_cast<int>(kept.size())));
  });
}

}  // namespace

UserFormDialog::UserFormDialog(VtDatabase& db, UserFormLogic::Mode mode, const QString& userId, QWidget* parent)
    : ModalScreen(mode == UserFormLogic::Mode::Regist ? QStringLiteral("frmUserRegist")
                                                       : QStringLiteral("frmUserModify"),
                  parent),
      logic_(db, mode, userId) {
  setWindowTitle(GetIniCaption(logic_.section(), QStringLiteral("CAPTION_TITLE")));
  loaded_ = logic_.load();
  build();
  showFields();
}

void UserFormDialog::build() {
  const QString sec = logic_.section();
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(24, 20, 24, 20);
  outer->setSpacing(14);

  // Names: the Japanese edition has the one field of the whole name.
  auto* names = new QGridLayout;
  names->setHorizontalSpacing(16);
  auto nameRow = [&](QLabel*& label, const char* labelName, const char* key, QLineEdit*& edit,
                     const char* editName, int row) {
    label = captionLabel(labelName, sec, QLatin1String(key));
    edit = new QLineEdit(this);
    edit->setObjectName(QString::fromLatin1(editName));
    edit->setMinimumWidth(320);
    edit->installEventFilter(this);
    names->addWidget(label, row, 0);
    names->addWidget(edit, row, 1);
  };
  nameRow(lblFN, "lblFN", "CAPTION_LBLFN", txtFN, "txtFN", 0);
  nameRow(lblMN, "lblMN", "CAPTION_LBLMN", txtMN, "txtMN", 1);
  nameRow(lblLN, "lblLN", "CAPTION_LBLLN", txtLN, "txtLN", 2);
  names->setColumnStretch(1, 1);
  const bool english = logic_.englishNames();
  for (QWidget* w : {static_cast<QWidget*>(lblMN), static_cast<QWidget*>(txtMN), static_cast<QWidget*>(lblLN),
                     static_cast<QWidget*>(txtLN)})
    w->setVisible(english);
  outer->addLayout(names);

  // The six icons; a press on a picture selects it too.
  frameSelectIcon = new QGroupBox(GetIniCaption(sec, QStringLiteral("CAPTION_FRAMESELECTICON")), this);
  frameSelectIcon->setObjectName(QStringLiteral("frameSelectIcon"));
  auto* icons = new QGridLayout(frameSelectIcon);
  icons->setHorizontalSpacing(18);
  for (int i = 0; i < UserFormLogic::kIconCount; ++i) {
    imgUserIcon[i] = new QLabel(frameSelectIcon);
    imgUserIcon[i]->setObjectName(QStringLiteral("imgUserIcon_%1").arg(i));
    imgUserIcon[i]->setFixedSize(80, 80);
    imgUserIcon[i]->setAlignment(Qt::AlignCenter);
    imgUserIcon[i]->setCursor(Qt::PointingHandCursor);
    const QPixmap picture = userIcon(i + 1, 72);
    if (!picture.isNull()) imgUserIcon[i]->setPixmap(picture);
    imgUserIcon[i]->installEventFilter(this);
    optUserIcon[i] = new QRadioButton(frameSelectIcon);
    optUserIcon[i]->setObjectName(QStringLiteral("optUserIcon_%1").arg(i));
    icons->addWidget(imgUserIcon[i], 0, i, Qt::AlignHCenter);
    icons->addWidget(optUserIcon[i], 1, i, Qt::AlignHCenter);
  }
  outer->addWidget(frameSelectIcon);

  // Targets: the Japanese edition only.
  frameTarget = new QGroupBox(GetIniCaption(sec, QStringLiteral("CAPTION_FRAMETARGET")), this);
  frameTarget->setObjectName(QStringLiteral("frameTarget"));
  auto* target = new QVBoxLayout(frameTarget);
  target->setSpacing(10);
  auto* frames = new QHBoxLayout;
  frames->setSpacing(14);
  auto figure = [&](QGridLayout* grid, int row, const char* labelKey, QLineEdit*& edit, const char* editName,
                    const char* unitKey) {
    grid->addWidget(new QLabel(GetIniCaption(sec, QLatin1String(labelKey)), this), row, 0);
    edit = new QLineEdit(this);
    edit->setObjectName(QString::fromLatin1(editName));
    edit->setAlignment(Qt::AlignRight);
    // Figures are typed without the input method (names keep it on).
    edit->setAttribute(Qt::WA_InputMethodEnabled, false);
    edit->setInputMethodHints(Qt::ImhPreferNumbers);
    edit->setFixedWidth(110);
    edit->installEventFilter(this);
    grid->addWidget(edit, row, 1);
    grid->addWidget(new QLabel(GetIniCaption(sec, QLatin1String(unitKey)), this), row, 2);
  };
  frameDailyTarget = new QGroupBox(GetIniCaption(sec, QStringLiteral("CAPTION_FRAMEDAILYTARGET")), frameTarget);
  frameDailyTarget->setObjectName(QStringLiteral("frameDailyTarget"));
  auto* daily = new QGridLayout(frameDailyTarget);
  figure(daily, 0, "CAPTION_LBLACTCAL", txtActCalData, "txtActCalData", "CAPTION_LBLACTCALUNIT");
  figure(daily, 1, "CAPTION_LBLSTEP", txtStepData, "txtStepData", "CAPTION_LBLSTEPUNIT");
  frameWeeklyTarget = new QGroupBox(GetIniCaption(sec, QStringLiteral("CAPTION_FRAMEWEEKLYTARGET")), frameTarget);
  frameWeeklyTarget->setObjectName(QStringLiteral("frameWeeklyTarget"));
  auto* weekly = new QGridLayout(frameWeeklyTarget);
  figure(weekly, 0, "CAPTION_LBLEXERCISE", txtExerciseDate, "txtExerciseDate", "CAPTION_LBLEXERCISEUNIT");
  weekly->setRowStretch(1, 1);
  frames->addWidget(frameDailyTarget, 3);
  frames->addWidget(frameWeeklyTarget, 2);
  target->addLayout(frames);
  for (int i = 0; i < 3; ++i) {
    optTargetUsing[i] = new QRadioButton(
        GetIniCaption(sec, QStringLiteral("CAPTION_OPTTARGETUSING_%1").arg(i)), frameTarget);
    optTargetUsing[i]->setObjectName(QStringLiteral("optTargetUsing_%1").arg(i));
    target->addWidget(optTargetUsing[i]);
  }
  frameTarget->setVisible(logic_.targetsShown());
  outer->addWidget(frameTarget);

  for (auto [edit, column] : {std::pair{txtFN, "FIRST_NAME"}, {txtMN, "MIDDLE_NAME"}, {txtLN, "LAST_NAME"}}) {
    const int width = NameWidth(column);
    if (width > 0) FilterOnChange(edit, [width](const QString& text) { return LimitCharacters(text, width); });
  }
  FilterOnChange(txtActCalData, FilterWholeNumber);
  FilterOnChange(txtStepData, FilterWholeNumber);
  FilterOnChange(txtExerciseDate, FilterDecimalNumber);
  outer->addStretch(1);
}

void UserFormDialog::buildButtons(QPushButton*& ok, const char* okName, QPushButton*& cancel, const char* cancelName) {
  const QString sec = logic_.section();
  ok = captionButton(okName, sec, QStringLiteral("CAPTION_") + QString::fromLatin1(okName).toUpper());
  cancel = captionButton(cancelName, sec, QStringLiteral("CAPTION_") + QString::fromLatin1(cancelName).toUpper());
  ok->setDefault(true);
  ok->setEnabled(loaded_);
  layout()->addWidget(buttonRow({ok, cancel}));
}

void UserFormDialog::showFields() {
  txtFN->setText(logic_.firstName);
  txtMN->setText(logic_.middleName);
  txtLN->setText(logic_.lastName);
  optUserIcon[static_cast<size_t>(logic_.iconIndex)]->setChecked(true);
  txtActCalData->setText(logic_.actCal);
  txtStepData->setText(logic_.step);
  txtExerciseDate->setText(logic_.exercise);
  optTargetUsing[static_cast<size_t>(logic_.targetUsing)]->setChecked(true);
}

void UserFormDialog::takeFields() {
  logic_.firstName = txtFN->text();
  logic_.middleName = txtMN->text();
  logic_.lastName = txtLN->text();
  for (int i = 0; i < UserFormLogic::kIconCount; ++i)
    if (optUserIcon[i]->isChecked()) logic_.iconIndex = i;
  logic_.actCal = txtActCalData->text();
  logic_.step = txtStepData->text();
  logic_.exercise = txtExerciseDate->text();
  for (int i = 0; i < 3; ++i)
    if (optTargetUsing[i]->isChecked()) logic_.targetUsing = i;
}

QWidget* UserFormDialog::focusWidget(UserField field) const {
  switch (field) {
    case UserField::FirstName: return txtFN;
    case UserField::ActCal: return txtActCalData;
    case UserField::Step: return txtStepData;
    case UserField::Exercise: return txtExerciseDate;
    case UserField::None: break;
  }
  return nullptr;
}

bool UserFormDialog::pressOk() {
  takeFields();
  const UserFormLogic::Outcome outcome = logic_.submit();
  // The exercise figure is shown in the form the check gave it.
  txtExerciseDate->setText(logic_.exercise);
  if (outcome.close) return true;
  if (auto* edit = qobject_cast<QLineEdit*>(focusWidget(outcome.focus))) {
    edit->setFocus(Qt::OtherFocusReason);
    edit->selectAll();
  }
  return false;
}

bool UserFormDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn) {
    // Every field selects its whole text when it gets the focus (after the click that
    // gave it, which would clear the selection again).
    if (auto* edit = qobject_cast<QLineEdit*>(watched)) QTimer::singleShot(0, edit, &QLineEdit::selectAll);
  } else if (event->type() == QEvent::FocusOut && watched == txtExerciseDate) {
    txtExerciseDate->setText(FormatExerciseText(txtExerciseDate->text()));
  } else if (event->type() == QEvent::MouseButtonPress) {
    for (int i = 0; i < UserFormLogic::kIconCount; ++i)
      if (watched == imgUserIcon[i]) optUserIcon[i]->setChecked(true);
  }
  return ModalScreen::eventFilter(watched, event);
}
