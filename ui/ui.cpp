#include "ui.h"
