// The actions the main window's menus and buttons lead to that live in screens of their
// own: printing, the weight plan, CSV, backups, help and version.
#pragma once

#include "ui/frmTerminal.h"

class ChartMaker;
class VtDatabase;

frmTerminal::Actions DesktopActions(VtDatabase& db, ChartMaker& chart, frmTerminal& window);
