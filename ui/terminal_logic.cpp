#include "ui/terminal_logic.h"

#include <algorithm>

#include "device/transport.h"
#include "frame/shared_values.h"
#include "receive/receive.h"

MenuState MenuStateFor(const QString& screenState, const QString& focusState, bool groupHasUsers,
                       bool recorderHandled, const QString& dataState) {
  MenuState m;
  m.receive = recorderHandled;
  const bool userChosen = focusState == kFocusUserSelect;
  if (screenState == kStateUserSelect) {
    m.newUser = true;
    m.editUser = userChosen;
    m.deleteUser = userChosen;
    m.sort = groupHasUsers;
  } else if (screenState == kStateJob) {
    m.editUser = true;
    m.report = true;
    m.userList = true;
    m.back = true;
  } else {
    m.report = true;
    m.back = true;
  }
  if (screenState == kStateUserSelect) m.report = false;
  if (dataState == kDataStateNoData) m.report = false;
  return m;
}

ButtonState ButtonStateFor(const QString& screenState, const QString& focusState,
                           bool recorderHandled, bool hasData) {
  ButtonState b;
  b.receive = recorderHandled;
  if (screenState == kStateUserSelect) {
    b.userNew = true;
    b.userEdit = focusState == kFocusUserSelect;
    return b;
  }
  b.back = true;
  b.userEdit = true;
  b.print = screenState != kStateJob || hasData;
  return b;
}

void ApplySortOrder(std::vector<UserInfo>& users, int order) {
  const bool byName = order == kSortNameAscend || order == kSortNameDescend;
  const bool descending = order == kSortRegistDescend || order == kSortNameDescend;
  std::stable_sort(users.begin(), users.end(), [&](const UserInfo& a, const UserInfo& b) {
    int c = byName ? QString::localeAwareCompare(a.DisplayName, b.DisplayName) : 0;
    if (c == 0) c = QString::compare(a.USER_ID, b.USER_ID);
    return descending ? c > 0 : c < 0;
  });
}

QString NameLineText(const UserInfo& user, bool english) {
  if (!english) return user.FIRST_NAME;
  QString text = user.FIRST_NAME;
  if (!user.MIDDLE_NAME.isEmpty()) text += QLatin1Char(' ') + user.MIDDLE_NAME;
  if (!user.LAST_NAME.isEmpty()) text += QLatin1Char(' ') + user.LAST_NAME;
  return text;
}

QString CutToWidth(const QString& text, int width, const std::function<int(const QString&)>& measure) {
  QString cut = text;
  while (!cut.isEmpty() && measure(cut) > width) {
    cut.chop(1);
    // Never leave half of a surrogate pair behind.
    if (!cut.isEmpty() && cut.back().isHighSurrogate()) cut.chop(1);
  }
  return cut;
}

TickAction PollingTick(TavoReader& reader, DeviceClock& clock, DeviceState& state, bool minimized) {
  const qint32 handle = UsbOpen(reader, clock, state);
  if (handle == 0) {
    if (!GetRecorderHandled()) return TickAction::Nothing;
    SetRecorderHandled(false);
    return TickAction::RecorderGone;
  }
  if (minimized) {
    UsbClose(reader, state);
    return TickAction::Minimized;
  }
  if (GetModalFormOpen()) {
    if (GetRecorderHandled()) return TickAction::StillConnected;
    SetRecorderHandled(true);
    return TickAction::MarkedSeen;
  }
  if (GetRecorderHandled()) return TickAction::StillConnected;
  return TickAction::StartReceive;
}
