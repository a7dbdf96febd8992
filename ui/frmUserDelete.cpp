#include "ui/frmUserDelete.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/catalogue.h"
#include "frame/trace.h"

namespace {
const QString kSection = QStringLiteral("USERDELETE");
}

frmUserDelete::frmUserDelete(VtDatabase& db, QWidget* parent)
    : UserNameScreen(QStringLiteral("frmUserDelete"), parent), logic_(db) {
  setWindowTitle(GetIniCaption(kSection, QStringLiteral("CAPTION_TITLE")));
  const bool loaded = logic_.load();

  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(24, 20, 24, 20);
  outer->setSpacing(16);
  lblMessage = captionLabel("lblMessage", kSection, QStringLiteral("CAPTION_LBLMESSAGE"));
  lblMessage->setWordWrap(true);
  outer->addWidget(lblMessage);

  QHBoxLayout* who = nameRowsOf(kSection, logic_.user().ICONINDEX, logic_.names());
  outer->addLayout(who);
  outer->addStretch(1);

  btnUserDelete = captionButton("btnUserDelete", kSection, QStringLiteral("CAPTION_BTNUSERDELETE"));
  btnUserDeleteCancel = captionButton("btnUserDeleteCancel", kSection, QStringLiteral("CAPTION_BTNUSERDELETECANCEL"));
  btnUserDelete->setEnabled(loaded);
  btnUserDeleteCancel->setDefault(true);
  outer->addWidget(buttonRow({btnUserDelete, btnUserDeleteCancel}));

  connect(btnUserDelete, &QPushButton::clicked, this, [this] {
    // The screen closes after the press whatever came of it.
    if (logic_.deleteUser()) {
      deleted_ << logic_.user().USER_ID.trimmed();
      accept();
    } else {
      reject();
    }
  });
  connect(btnUserDeleteCancel, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnUserDeleteCancel_Click Start"));
    reject();
  });
  setMinimumWidth(520);
}
