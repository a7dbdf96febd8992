#include "trace.h"
