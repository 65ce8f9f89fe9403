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

// Each search setting's name, the console word that sets it (none for the
// margins and reductions), its default and its range: what the console word
// accepts, and what a tuning build offers as an option.
struct SearchSettingSpec {
    const char* name;
    const char* console_word;
    int16_t def, min, max;
};

inline constexpr SearchSettingSpec SEARCH_SETTINGS[SEARCH_SETTING_COUNT] = {
    {"leading", nullptr, 0, 0, 0},
    {"SEP_depth", "SEP_depth", 3, 0, 100},
    {"SEP_mult", nullptr, 75, 0, 300},
    {"NMP_depth", "NMP_depth", 3, 0, 100},
    {"FP_depth", "FP_depth", 3, 0, 100},
    {"FP_mult", nullptr, 125, 0, 400},
    {"PC_depth", "ProbCut_depth", 3, 0, 100},
    {"PC_red", nullptr, 3, 1, 8},
    {"PC_margin", nullptr, 100, 0, 400},
    {"LMP_depth", "LMP_depth", 6, 0, 100},
    {"LMP_mult", nullptr, 2, 0, 10},
    {"LMR_depth", "LMR_depth", 3, 0, 100},
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
    int16_t show_wdl;
    int16_t search[SEARCH_SETTING_COUNT];
    // How much the engine says (console "noise", -noise, -quiet): from 9999
    // on the book listing and the tools' search lines are silent. Set by the
    // front end directly; no option carries it.
    double noise;
};

extern SearchConfig search_config;
