#include "search/search_params.h"

#include "search/search_config.h"

#include <algorithm>
#include <cmath>

SearchParams search_params;

void build_search_params()
{
    const int16_t* v = search_config.search;
    int selectivity = search_config.selectivity;
    SearchParams& p = search_params;
    p.bp_margin = selectivity < 100 ? (100 - selectivity) / 2 + 15 : 15;
    p.fp_depth = v[FP_DEPTH];
    p.sep_depth = v[SEP_DEPTH];
    p.pc_depth = v[PC_DEPTH];
    p.pc_red = v[PC_RED];
    p.pc_margin = v[PC_MARGIN];
    p.nmp_depth = v[NMP_DEPTH];
    p.lmp_depth = v[LMP_DEPTH];
    p.lmr_depth = v[LMR_DEPTH];
    for (int d = 0; d < MARGIN_DEPTHS; d++) {
        p.fp_margin[d] = v[FP_MULT] * d + 50;
        p.sep_margin[d] = v[SEP_MULT] * d;
        p.lmp_count[d] = v[LMP_MULT] * d + 1;
    }
    double s = std::min(selectivity, 200) / 100.0;
    for (int d = 0; d < 32; d++)
        for (int m = 0; m < 32; m++) {
            if (d <= 2) {
                p.lmr_pv[d][m] = p.lmr_nonpv[d][m] = 0;
                continue;
            }
            double lnd = std::log(double(d)), lnm = std::log(double(m + 1));
            long pv = std::lround(std::min(double(d - 2), s * (0.44 * lnd * lnm - 0.6)));
            long nonpv = std::lround(std::min(double(d - 1), s * (0.46 * lnd * lnm + 0.6)));
            p.lmr_pv[d][m] = int8_t(std::clamp(pv, 0L, 4L));
            p.lmr_nonpv[d][m] = int8_t(std::clamp(nonpv, 0L, 5L));
        }
    if (selectivity == 0) {
        // Every selective device off.
        p.fp_depth = p.sep_depth = p.lmp_depth = 0;
        p.pc_depth = p.nmp_depth = p.lmr_depth = 100;
        p.bp_margin = 5000;
    }
}
