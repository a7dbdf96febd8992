// The decisions of the main window, without a widget: which menu entries and buttons
// are enabled, the order of the user list, the name line, and what a polling tick does.
// frmTerminal applies what these return; tests drive them directly.
#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "store/store.h"

class DeviceClock;
class TavoReader;
struct DeviceState;

inline const QString kStateTop = QStringLiteral("S_TOP");
inline const QString kFocusUserSelect = QStringLiteral("STATE_USERSELECT");
inline const QString kFocusGroupSelect = QStringLiteral("STATE_GROUPSELECT");
inline const QString kDataStateNoData = QStringLiteral("NODATA");

// The user list's four orders (SORT_ORDER).
enum UserSortOrder : int {
  kSortRegistAscend = 0,
  kSortRegistDescend = 1,
  kSortNameAscend = 2,
  kSortNameDescend = 3,
};

struct MenuState {
  bool newUser = false;
  bool editUser = false;
  bool deleteUser = false;
  bool sort = false;
  bool receive = false;
  bool report = false;
  bool userList = false;
  bool back = false;
};

struct ButtonState {
  bool back = false;
  bool userNew = false;
  bool userEdit = false;
  bool receive = false;
  bool print = false;
};

// The enabled menu entries of a screen state. dataState "NODATA" turns the report off.
MenuState MenuStateFor(const QString& screenState, const QString& focusState, bool groupHasUsers,
                       bool recorderHandled, const QString& dataState);
// The enabled buttons; hasData is the check after a chart or data change (S_JOB only:
// without data the print button is off).
ButtonState ButtonStateFor(const QString& screenState, const QString& focusState,
                           bool recorderHandled, bool hasData);

// Puts the users in the list's order: identifier (the order of registration) or display
// name, ascending or descending. An unknown order keeps registration order.
void ApplySortOrder(std::vector<UserInfo>& users, int order);

// The name shown in the name line: the first name alone in the Japanese edition (the
// honorific stands in its own label behind it), else first, middle (when given) and last
// name separated by blanks.
QString NameLineText(const UserInfo& user, bool english);
// Cuts text by one character at a time from its end until measure(text) fits width.
QString CutToWidth(const QString& text, int width, const std::function<int(const QString&)>& measure);

// What one tick of the polling timer did.
enum class TickAction {
  Nothing,         // no recorder, none before
  RecorderGone,    // the recorder was taken away: RecorderHandled cleared
  Minimized,       // a recorder, but the window is minimized: handle closed, nothing marked
  MarkedSeen,      // a recorder placed while a secondary screen is open: taken as seen
  StillConnected,  // the recorder was dealt with already, or is being (a screen is open)
  StartReceive,    // a new recorder and nothing open: an automatic receive starts
};

// One tick: asks the reader for a recorder (UsbOpen with its pause) and decides. The
// shared values RecorderHandled and ModalFormOpen are read and RecorderHandled updated;
// the receive itself is the window's to run. A recorder found leaves the handle open in
// state (closed again for a minimized window).
TickAction PollingTick(TavoReader& reader, DeviceClock& clock, DeviceState& state, bool minimized);
