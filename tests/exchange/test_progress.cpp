#include "exchange_fixture.h"
