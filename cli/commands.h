// Subcommands of vantora-cli. Each takes the arguments after its name and returns the
// exit code: 0 success, 1 the operation failed (message on stderr), 2 bad usage.
#pragma once

#include <QStringList>

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
// receive
int cmd_receive(const QStringList& args);
// charts
int cmd_chart_data(const QStringList& args);
int cmd_range(const QStringList& args);
// chart library
int cmd_render(const QStringList& args);
