#include "helpers.h"
