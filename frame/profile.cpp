#include "profile.h"
