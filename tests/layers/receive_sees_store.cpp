#include "receive/receive.h"
#include "store/store.h"
