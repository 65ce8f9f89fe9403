// Search margins, depths and reduction tables, derived before a search from
// the Selectivity option and the search depth settings.
#pragma once

#include "search/search_values.h"

#include <cstdint>

constexpr int MARGIN_DEPTHS = 12; // margin tables run over depths 0..11

struct SearchParams {
    int bp_margin; // over beta for the cut-node pruning block
    int fp_depth;  // razoring
    int fp_margin[MARGIN_DEPTHS];
    int sep_depth; // static evaluation pruning
    int sep_margin[MARGIN_DEPTHS];
    int pc_depth, pc_red, pc_margin; // ProbCut
    int nmp_depth;                   // null move
    int lmp_depth;                   // late-move pruning
    int lmp_count[MARGIN_DEPTHS];
    int lmr_depth; // late-move reductions
    int8_t lmr_pv[32][32];
    int8_t lmr_nonpv[32][32];
    int strength_reduction_rate;
};

extern SearchParams search_params;

// Rebuilds every derived value from the working copy of the settings.
void build_search_params();

inline int margin_index(int depth)
{
    return depth < 0 ? 0 : depth >= MARGIN_DEPTHS ? MARGIN_DEPTHS - 1 : depth;
}

// Null moves allowed on one path: one below iteration 10, then one more per
// ten iterations or so ((iteration * 205) >> 11 further ones).
inline bool null_move_allowed(int nulls_on_path, int iteration_depth)
{
    return nulls_on_path <= (uint16_t(iteration_depth * 205) >> 11);
}

// Aspiration bounds beyond +-5000 open all the way.
constexpr int ASPIRATION_LIMIT = 5000;
inline int open_lower(int bound)
{
    return bound < -ASPIRATION_LIMIT ? -INFINITE_SCORE : bound;
}
inline int open_upper(int bound)
{
    return bound > ASPIRATION_LIMIT ? INFINITE_SCORE : bound;
}
