#include "receive/receive.h"
