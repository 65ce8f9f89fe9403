#include "search/search_config.h"

SearchConfig search_config = {1, 64, 50, 1, 1, 0, 0, 100, {0, 3, 75, 3, 3, 125, 3, 3, 100, 6, 2, 3}};
