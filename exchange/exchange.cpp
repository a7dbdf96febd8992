#include "exchange.h"
