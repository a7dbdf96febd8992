#include "store/store.h"
