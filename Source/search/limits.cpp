#include "search/limits.h"

SearchLimits limits;
