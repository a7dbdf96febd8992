#include "frame/shared_values.h"

namespace {

struct SharedValues {
  QString screenState = QStringLiteral("S_TOP");
  QString focusState = QStringLiteral("");
  QString loginUserId = QStringLiteral("");
  QString currentGroupId = QStringLiteral("G000000001");
  QString currentGroupName = QStringLiteral("");
  QString currentUserId = QStringLiteral("");
  QString currentUserName = QStringLiteral("");
  std::int16_t userSortOrder = 0;
  QString configPath = QStringLiteral("");
  QString resourceIniPath = QStringLiteral("");
  QString metsIniPath = QStringLiteral("");
  QString langCode = QStringLiteral("0");
  QString screenClass = QStringLiteral("0");
  QString logLevel = QStringLiteral("1");
  bool recorderHandled = false;
  bool receiveRunning = false;
  bool modalFormOpen = false;
  bool startupDone = false;
  QString commonFontName = QStringLiteral("");
  QString commonDateFormat = QStringLiteral("");
  QString commonScreenDateFormat = QStringLiteral("");
  std::uint32_t commonFormBackColor = 0;
  QString printerName = QStringLiteral("");
  QString chosenPrinter = QStringLiteral("");
  std::int32_t chosenPaper = 0;
  int writerLockWaitMs = 5000;
};

SharedValues& values() {
  static SharedValues v;
  return v;
}

}  // namespace

int GetWriterLockWaitMs() { return values().writerLockWaitMs; }
void SetWriterLockWaitMs(int v) { values().writerLockWaitMs = v; }
QString GetScreenState() { return values().screenState; }
void SetScreenState(const QString& v) { values().screenState = v; }
QString GetFocusState() { return values().focusState; }
void SetFocusState(const QString& v) { values().focusState = v; }
QString GetLoginUserId() { return values().loginUserId; }
void SetLoginUserId(const QString& v) { values().loginUserId = v; }
QString GetCurrentGroupId() { return values().currentGroupId; }
void SetCurrentGroupId(const QString& v) { values().currentGroupId = v; }
QString GetCurrentGroupName() { return values().currentGroupName; }
void SetCurrentGroupName(const QString& v) { values().currentGroupName = v; }
QString GetCurrentUserId() { return values().currentUserId; }
void SetCurrentUserId(const QString& v) { values().currentUserId = v; }
QString GetCurrentUserName() { return values().currentUserName; }
void SetCurrentUserName(const QString& v) { values().currentUserName = v; }
std::int16_t GetUserSortOrder() { return values().userSortOrder; }
void SetUserSortOrder(std::int16_t v) { values().userSortOrder = v; }
QString GetConfigPath() { return values().configPath; }
void SetConfigPath(const QString& v) { values().configPath = v; }
QString GetResourceIniPath() { return values().resourceIniPath; }
void SetResourceIniPath(const QString& v) { values().resourceIniPath = v; }
QString GetMetsIniPath() { return values().metsIniPath; }
void SetMetsIniPath(const QString& v) { values().metsIniPath = v; }
QString GetLangCode() { return values().langCode; }
void SetLangCode(const QString& v) { values().langCode = v; }
QString GetScreenClass() { return values().screenClass; }
void SetScreenClass(const QString& v) { values().screenClass = v; }
QString GetLogLevel() { return values().logLevel; }
void SetLogLevel(const QString& v) { values().logLevel = v; }
bool GetRecorderHandled() { return values().recorderHandled; }
void SetRecorderHandled(bool v) { values().recorderHandled = v; }
bool GetReceiveRunning() { return values().receiveRunning; }
void SetReceiveRunning(bool v) { values().receiveRunning = v; }
bool GetModalFormOpen() { return values().modalFormOpen; }
void SetModalFormOpen(bool v) { values().modalFormOpen = v; }
bool GetStartupDone() { return values().startupDone; }
void SetStartupDone(bool v) { values().startupDone = v; }
QString GetCommonFontName() { return values().commonFontName; }
void SetCommonFontName(const QString& v) { values().commonFontName = v; }
QString GetCommonDateFormat() { return values().commonDateFormat; }
void SetCommonDateFormat(const QString& v) { values().commonDateFormat = v; }
QString GetCommonScreenDateFormat() { return values().commonScreenDateFormat; }
void SetCommonScreenDateFormat(const QString& v) { values().commonScreenDateFormat = v; }
std::uint32_t GetCommonFormBackColor() { return values().commonFormBackColor; }
void SetCommonFormBackColor(std::uint32_t v) { values().commonFormBackColor = v; }
QString GetPrinterName() { return values().printerName; }
void SetPrinterName(const QString& v) { values().printerName = v; }
QString GetChosenPrinter() { return values().chosenPrinter; }
void SetChosenPrinter(const QString& v) { values().chosenPrinter = v; }
std::int32_t GetChosenPaper() { return values().chosenPaper; }
void SetChosenPaper(std::int32_t v) { values().chosenPaper = v; }

bool IsEnglishEdition() { return values().langCode == QLatin1String("1"); }

void ResetSharedValues() { values() = SharedValues{}; }
