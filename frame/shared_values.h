// Process-wide values. They live for the whole process and are reached only
// through these getters and setters; nothing else in the program keeps hidden state.
#pragma once

#include <QString>
#include <cstdint>

// Main screen state: "S_TOP", "S_USERSELECT", "S_JOBSELECT" or "S_JOB".
QString GetScreenState();
void SetScreenState(const QString& v);
// "STATE_USERSELECT" or "STATE_GROUPSELECT".
QString GetFocusState();
void SetFocusState(const QString& v);
QString GetLoginUserId();
void SetLoginUserId(const QString& v);
QString GetCurrentGroupId();
void SetCurrentGroupId(const QString& v);
QString GetCurrentGroupName();
void SetCurrentGroupName(const QString& v);
QString GetCurrentUserId();
void SetCurrentUserId(const QString& v);
QString GetCurrentUserName();
void SetCurrentUserName(const QString& v);
std::int16_t GetUserSortOrder();
void SetUserSortOrder(std::int16_t v);
// Paths found by Ini_LoadConfig.
QString GetConfigPath();
void SetConfigPath(const QString& v);
QString GetResourceIniPath();
void SetResourceIniPath(const QString& v);
QString GetMetsIniPath();
void SetMetsIniPath(const QString& v);
// Value of LANG as decimal text: "0" Japanese rules, "1" English rules.
QString GetLangCode();
void SetLangCode(const QString& v);
bool IsEnglishEdition();  // GetLangCode() == "1"
// "0", "1" or "2": the window size class.
QString GetScreenClass();
void SetScreenClass(const QString& v);
// Threshold of the trace log, as text.
QString GetLogLevel();
void SetLogLevel(const QString& v);
bool GetRecorderHandled();
void SetRecorderHandled(bool v);
bool GetReceiveRunning();
void SetReceiveRunning(bool v);
bool GetModalFormOpen();
void SetModalFormOpen(bool v);
bool GetStartupDone();
void SetStartupDone(bool v);

// The common look, read by LoadCommonFormat.
QString GetCommonFontName();
void SetCommonFontName(const QString& v);
QString GetCommonDateFormat();  // date pickers
void SetCommonDateFormat(const QString& v);
QString GetCommonScreenDateFormat();  // labels
void SetCommonScreenDateFormat(const QString& v);
std::uint32_t GetCommonFormBackColor();  // red + 256 green + 65536 blue
void SetCommonFormBackColor(std::uint32_t v);

// The printer and paper chosen last since the process started (never written to the
// configuration), and the result of the last printer selection: empty and 0 after
// Cancel. A paper is the platform's paper number (9 A4, 1 Letter).
QString GetPrinterName();
void SetPrinterName(const QString& v);
QString GetChosenPrinter();
void SetChosenPrinter(const QString& v);
std::int32_t GetChosenPaper();
void SetChosenPaper(std::int32_t v);
// How long a writer waits for the installation's lock before it reports that Vantora is
// busy, in milliseconds (5000; tests shorten it).
int GetWriterLockWaitMs();
void SetWriterLockWaitMs(int v);

// Puts every value back to its start value (tests, and a fresh start of the main screen).
void ResetSharedValues();
