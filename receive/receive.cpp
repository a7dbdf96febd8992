#include "receive.h"
