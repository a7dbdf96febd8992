#include "charts.h"
