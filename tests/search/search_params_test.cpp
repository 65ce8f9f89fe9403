#include "search/iterate.h"
#include "search/search_config.h"
#include "search/search_params.h"
#include "uci/settings.h"

#include <gtest/gtest.h>

TEST(SearchParams, SelectivityShapesEveryDevice)
{
    set_default_settings();
    build_search_params();
    const SearchParams& p = search_params;
    EXPECT_EQ(p.bp_margin, 15);
    EXPECT_EQ(p.fp_margin[2], 125 * 2 + 50);
    EXPECT_EQ(p.sep_margin[3], 225);
    EXPECT_EQ(p.lmp_count[4], 9);
    EXPECT_EQ(p.lmr_pv[2][20], 0);
    EXPECT_EQ(p.lmr_nonpv[3][0], 1); // round(min(2, 0.6))
    EXPECT_EQ(p.lmr_nonpv[31][31], 5);
    EXPECT_EQ(p.lmr_pv[31][31], 4);
    EXPECT_EQ(p.lmr_pv[10][3], 1); // 0.44 ln10 ln4 - 0.6 = 0.80

    search_config.selectivity = 50;
    build_search_params();
    EXPECT_EQ(p.bp_margin, 40);
    EXPECT_EQ(p.lmr_pv[10][3], 0);

    search_config.selectivity = 0;
    build_search_params();
    EXPECT_EQ(p.fp_depth, 0);
    EXPECT_EQ(p.sep_depth, 0);
    EXPECT_EQ(p.lmp_depth, 0);
    EXPECT_EQ(p.pc_depth, 100);
    EXPECT_EQ(p.nmp_depth, 100);
    EXPECT_EQ(p.lmr_depth, 100);
    EXPECT_EQ(p.bp_margin, 5000);
    set_default_settings();
    build_search_params();
}

TEST(SearchParams, HelperDepths)
{
    // With 8 threads a helper at depth 10 moves on when five are there already.
    EXPECT_EQ(helper_depth(10, 5, 8), 11);
    EXPECT_EQ(helper_depth(10, 4, 8), 10);
}

TEST(SearchParams, NullMoveBudgetAndAspirationBounds)
{
    // Below iteration 10 only a path without a null move may try one.
    EXPECT_TRUE(null_move_allowed(0, 9));
    EXPECT_FALSE(null_move_allowed(1, 9));
    EXPECT_TRUE(null_move_allowed(1, 10));
    EXPECT_FALSE(null_move_allowed(2, 19));
    EXPECT_TRUE(null_move_allowed(2, 20));
    EXPECT_EQ(open_lower(-5001), -10001);
    EXPECT_EQ(open_lower(-5000), -5000);
    EXPECT_EQ(open_upper(5001), 10001);
}
