#include "vbformat.h"
