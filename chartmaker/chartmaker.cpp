#include "chartmaker.h"
