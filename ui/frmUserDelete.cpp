#include "frmUserDelete.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "catalogue.h"
#include "trace.h"

namespace {
const QString kSection = QStringLiteral("USERDELETE");
}

frmUserDelete::frmUserDelete(VtDatabase& db, QWidget* parent)
    : ModalScreen(QStringLiteral("frmUserDelete"), parent), logic_(db) {
  setWindowTitle(GetIniCaption(kSection, QStringLiteral("CAPTION_TITLE")));
  const bool loaded = logic_.load();

  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(24, 20, 24, 20);
  outer->setSpacing(16);
  lblMessage = captionLabel("lblMessage", kSection, QStringLiteral("CAPTION_LBLMESSAGE"));
  lblMessage->setWordWrap(true);
  outer->addWidget(lblMessage);

  auto* who = new QHBoxLayout;
  who->setSpacing(16);
  who->addWidget(userIconLabel("imgUserIcon", logic_.user().ICONINDEX), 0, Qt::AlignTop);
  std::array<QLabel*, 3> captions{};
  std::array<QLabel*, 3> values{};
  who->addWidget(nameRows(kSection, {"lblFN", "lblMN", "lblLN"}, {"CAPTION_LBLFN", "CAPTION_LBLMN", "CAPTION_LBLLN"},
                          {"lblFNData", "lblMNData", "lblLNData"}, logic_.names(), captions, values),
                 1, Qt::AlignVCenter);
  lblFN = captions[0];
  lblMN = captions[1];
  lblLN = captions[2];
  lblFNData = values[0];
  lblMNData = values[1];
  lblLNData = values[2];
  lblSama = captionLabel("lblSama", kSection, QStringLiteral("CAPTION_LBLSAMA"));
  lblSama->hide();
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
