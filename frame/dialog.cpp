#include "dialog.h"
