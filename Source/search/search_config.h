// The settings the search reads. The front end copies its option values in
// between searches and raises `changed`; the search never writes them.
#pragma once

#include <cstdint>

// The twelve search depth settings, in record order (the first is unused).
enum SearchSetting {
    SS_LEADING,
    SEP_DEPTH,
    SEP_MULT,
    NMP_DEPTH,
    FP_DEPTH,
    FP_MULT,
    PC_DEPTH,
    PC_RED,
    PC_MARGIN,
    LMP_DEPTH,
    LMP_MULT,
    LMR_DEPTH,
    SEARCH_SETTING_COUNT
};

struct SearchConfig {
    int16_t changed; // the derived search and evaluation tables need rebuilding
    int16_t hash_mb; // below 1 the search neither probes nor stores
    int16_t move_overhead;
    int16_t ponder;
    int16_t multi_pv;
    int16_t limit_strength;
    int16_t elo;
    int16_t selectivity;
    int16_t search[SEARCH_SETTING_COUNT];
};

extern SearchConfig search_config;
