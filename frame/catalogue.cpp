#include "catalogue.h"
