#include "exchange/exchange.h"
