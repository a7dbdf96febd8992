#include "plan.h"
