#include "search/search_params.h"
#include "uci/settings.h"

#include <gtest/gtest.h>

// The reductions grow with depth and move number, PV nodes reduce no more
// than others, and more selectivity prunes more; at selectivity 0 every
// device is off.
TEST(SearchParams, SelectivityShapesEveryDevice)
{
    set_default_settings();
    const SearchParams& p = search_params;
    int last_bp = -1, last_lmr = -1, last_fp = 0;
    for (int selectivity : {200, 150, 100, 50}) {
        search_config.selectivity = selectivity;
        build_search_params();
        int total = 0;
        for (int d = 0; d < 32; d++)
            for (int m = 0; m < 32; m++) {
                if (d && p.lmr_nonpv[d][m] < p.lmr_nonpv[d - 1][m])
                    ADD_FAILURE() << "depth " << d << " move " << m;
                if (m && p.lmr_nonpv[d][m] < p.lmr_nonpv[d][m - 1])
                    ADD_FAILURE() << "depth " << d << " move " << m;
                EXPECT_LE(p.lmr_pv[d][m], p.lmr_nonpv[d][m]);
                EXPECT_GE(p.lmr_pv[d][m], 0);
                total += p.lmr_nonpv[d][m];
            }
        EXPECT_GT(p.lmr_nonpv[31][31], p.lmr_nonpv[2][2]) << selectivity;
        EXPECT_GT(p.fp_margin[2], p.fp_margin[1]) << selectivity;
        EXPECT_GE(p.bp_margin, last_bp) << "less selective, larger margin";
        if (last_lmr >= 0)
            EXPECT_LE(total, last_lmr) << "less selective, fewer reductions";
        if (last_fp)
            EXPECT_GE(p.fp_margin[2], last_fp);
        last_bp = p.bp_margin, last_lmr = total, last_fp = p.fp_margin[2];
    }
    EXPECT_GT(last_bp, 15);
    search_config.selectivity = 0;
    build_search_params();
    EXPECT_EQ(p.fp_depth, 0);
    EXPECT_EQ(p.sep_depth, 0);
    EXPECT_EQ(p.lmp_depth, 0);
    EXPECT_GT(p.pc_depth, MAX_PLY);
    EXPECT_GT(p.nmp_depth, MAX_PLY);
    EXPECT_GT(p.lmr_depth, MAX_PLY);
    EXPECT_GE(p.bp_margin, 5000);
    set_default_settings();
    build_search_params();
}

