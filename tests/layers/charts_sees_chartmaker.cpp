#include "chartmaker/chartmaker.h"
