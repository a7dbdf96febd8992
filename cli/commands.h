// Subcommands of vantora-cli. Each takes the arguments after its name and returns the
// exit code: 0 success, 1 the operation failed (message on stderr), 2 bad usage.
#pragma once

#include <QStringList>

class QTextStream;
class VtDatabase;

// The installation of the working directory: configuration, catalogue, language, and
// the configured database. 0 when ready, else the exit code (message on err).
int OpenInstallation(VtDatabase& db, QTextStream& err);

int cmd_version(const QStringList& args);
// device
int cmd_make_recorder(const QStringList& args);
int cmd_dump(const QStringList& args);
// store
int cmd_initdb(const QStringList& args);
int cmd_check(const QStringList& args);
int cmd_compact(const QStringList& args);
int cmd_users(const QStringList& args);
int cmd_days(const QStringList& args);
// backup and restore of the database
int cmd_backup(const QStringList& args);
int cmd_restore(const QStringList& args);
// receive
int cmd_receive(const QStringList& args);
// charts
int cmd_chart_data(const QStringList& args);
int cmd_range(const QStringList& args);
// chart library
int cmd_render(const QStringList& args);
// weight plan
int cmd_plan(const QStringList& args);
// csv
int cmd_export_csv(const QStringList& args);
int cmd_import_csv(const QStringList& args);
