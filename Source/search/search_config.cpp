#include "search/search_config.h"

// What the search reads until the front end first publishes its settings.
SearchConfig search_config = [] {
    SearchConfig c = {};
    c.changed = 1;
    c.hash_mb = 64;
    c.move_overhead = 50;
    c.ponder = 1;
    c.multi_pv = 1;
    c.selectivity = 100;
    for (int i = 0; i < SEARCH_SETTING_COUNT; i++)
        c.search[i] = SEARCH_SETTINGS[i].def;
    return c;
}();
