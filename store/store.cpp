#include "store.h"
