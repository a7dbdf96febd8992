#include "ui/frmUserSelectDialog.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/catalogue.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "ui/ini_picture.h"

namespace {

const QString kSection = QStringLiteral("USERLIST");

QColor FromVbColor(std::uint32_t c) {
  return QColor(static_cast<int>(c & 0xff), static_cast<int>((c >> 8) & 0xff),
                static_cast<int>((c >> 16) & 0xff));
}

}  // namespace

frmUserSelectDialog::frmUserSelectDialog(VtDatabase& db, const QString& callerForm, QWidget* parent)
    : ModalScreen(QStringLiteral("frmUserSelectDialog"), parent), logic_(db, callerForm) {
  setWindowTitle(GetIniCaption(kSection, QStringLiteral("CAPTION_TITLE")));
  logic_.load();

  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(20, 18, 20, 18);
  outer->setSpacing(12);

  // The panel of the group: what to do, and the name of the user clicked last.
  picGroupInfo = new QFrame(this);
  picGroupInfo->setObjectName(QStringLiteral("picGroupInfo"));
  picGroupInfo->setFrameShape(QFrame::StyledPanel);
  picGroupInfo->setAutoFillBackground(true);
  if (const std::uint32_t c = GetIniBackColor(kSection, QStringLiteral("BKCOLOUR_GROUPINFO")); c != 0) {
    QPalette pal = picGroupInfo->palette();
    pal.setColor(QPalette::Window, FromVbColor(c));
    picGroupInfo->setPalette(pal);
  }
  auto* info = new QVBoxLayout(picGroupInfo);
  info->setContentsMargins(16, 12, 16, 12);
  lblMessage = captionLabel("lblMessage", kSection, QStringLiteral("CAPTION_LBLMESSAGE"));
  lblMessage->setWordWrap(true);
  lblMessage->setParent(picGroupInfo);
  info->addWidget(lblMessage);
  lblUserNickName = dataLabel("lblUserNickName");
  lblUserNickName->setParent(picGroupInfo);
  QFont big = font();
  big.setPointSizeF(big.pointSizeF() * 1.4);
  big.setBold(true);
  lblUserNickName->setFont(big);
  lblUserNickName->setMinimumHeight(QFontMetrics(big).height() + 4);
  info->addWidget(lblUserNickName);
  // lblNameLength measures the name so that a long one is shortened, not cut.
  lblNameLength = dataLabel("lblNameLength");
  lblNameLength->setFont(big);
  lblNameLength->hide();
  lblSama = captionLabel("lblSama", kSection, QStringLiteral("CAPTION_LBLSAMA"));
  lblSama->hide();
  outer->addWidget(picGroupInfo);

  // One group only; its list is kept for the name and stays out of sight.
  lvGroupList = new QListWidget(this);
  lvGroupList->setObjectName(QStringLiteral("lvGroupList"));
  lvGroupList->addItem(GetCurrentGroupName());
  lvGroupList->hide();

  lvUserList = new QListWidget(this);
  lvUserList->setObjectName(QStringLiteral("lvUserList"));
  lvUserList->setViewMode(QListView::IconMode);
  lvUserList->setMovement(QListView::Static);
  lvUserList->setResizeMode(QListView::Adjust);
  lvUserList->setIconSize(QSize(80, 80));
  lvUserList->setGridSize(QSize(170, 160));
  lvUserList->setStyleSheet(QStringLiteral("QListView { padding-top: 10px; background: palette(base); }"));
  lvUserList->setWordWrap(true);
  lvUserList->setSelectionMode(QAbstractItemView::SingleSelection);
  lvUserList->setMinimumSize(560, 350);
  QFont names = lvUserList->font();
  names.setPointSizeF(names.pointSizeF() * 1.15);
  lvUserList->setFont(names);
  outer->addWidget(lvUserList, 1);

  btnCancel = captionButton("btnCancel", kSection, QStringLiteral("CAPTION_BTNCANCEL"));
  outer->addWidget(buttonRow({btnCancel}));

  fillList();
  connect(lvUserList, &QListWidget::currentRowChanged, this, [this](int row) {
    const QString text = logic_.click(row);
    // Before the first layout the label has no width yet; the panel's width is the room.
    const int room = lblUserNickName->width() > 150 ? lblUserNickName->width() : width() - 80;
    lblNameLength->setText(text);
    lblUserNickName->setText(lblNameLength->fontMetrics().elidedText(text, Qt::ElideRight, room));
  });
  connect(lvUserList, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
    if (logic_.take(lvUserList->row(item))) accept();
  });
  connect(btnCancel, &QPushButton::clicked, this, [this] {
    WriteTrace(QStringLiteral("0"), objectName(), QStringLiteral("btnCancel_Click Start"));
    reject();
  });
  resize(660, 580);
}

frmUserSelectDialog::~frmUserSelectDialog() { logic_.unload(); }

void frmUserSelectDialog::fillList() {
  for (const UserInfo& u : logic_.users()) {
    QPixmap picture;
    LoadIniPicture(QStringLiteral("VB_COMMON"), QStringLiteral("IMAGE_USERICON_%1").arg(u.ICONINDEX), picture);
    // The picture stays as it is when its user is selected: the face is how people find themselves.
    QIcon icon(picture);
    icon.addPixmap(picture, QIcon::Selected);
    auto* item = new QListWidgetItem(icon, u.DisplayName.trimmed(), lvUserList);
    item->setData(Qt::UserRole, u.USER_ID);
    item->setToolTip(u.DisplayName.trimmed());
    item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
  }
}

void frmUserSelectDialog::done(int result) {
  logic_.unload();
  ModalScreen::done(result);
}
