#include "ui/ui.h"
