#include "board/notation.h"
#include "search/limits.h"
#include "search/search_config.h"
#include "search/search_params.h"
#include "support/search_harness.h"

#include <gtest/gtest.h>

namespace
{

std::string text_of(Move m)
{
    char text[MOVE_TEXT_SIZE];
    move_to_coord(m, text, MOVE_STYLE_UCI);
    return text;
}

} // namespace

TEST(Search, MatesAreFoundWithTheirDistance)
{
    harness_start();
    SearchOutcome r = harness_search("6k1/5ppp/8/8/8/8/5PPP/R5K1 w - -", 6);
    EXPECT_EQ(text_of(r.best), "a1a8");
    EXPECT_EQ(r.score, 9998); // mated at ply 2 of a search whose root is ply 1
    r = harness_search("r2qkb1r/pp2nppp/3p4/2pNN1B1/2BnP3/3P4/PPP2PPP/R2bK2R w KQkq -", 8);
    EXPECT_EQ(text_of(r.best), "d5f6");
    EXPECT_EQ(r.score, 9996);
    r = harness_search("r5rk/5p1p/5R2/4B3/8/8/7P/7K w - -", 10);
    EXPECT_EQ(text_of(r.best), "f6a6");
    EXPECT_EQ(r.score, 9994);
}

TEST(Search, DrawsAndTheEndOfTheGame)
{
    harness_start();
    // No move at all: stalemate scores 0, checkmate as mated at the root.
    SearchOutcome r = harness_search("7k/7P/6K1/8/8/8/8/8 b - -", 5);
    EXPECT_EQ(r.best, 0);
    EXPECT_EQ(r.score, 0);
    r = harness_search("R6k/8/6K1/8/8/8/8/8 b - -", 5);
    EXPECT_EQ(r.best, 0);
    EXPECT_EQ(r.score, -9999);

    // A queen and rook down, White holds by perpetual check.
    r = harness_search("7k/6p1/8/8/8/8/qr5P/4Q2K w - -", 10);
    EXPECT_EQ(text_of(r.best), "e1e8");
    EXPECT_NEAR(r.score, 0, 30);

    // Past a hundred reversible half-moves every continuation is a draw,
    // even the mate in one.
    r = harness_search("8/8/8/8/8/6k1/R7/7K w - -", 6);
    EXPECT_GT(r.score, 500);
    r = harness_search("8/8/8/8/8/6k1/R7/7K w - -", 6, "", 100);
    EXPECT_EQ(r.score, 0);
}

TEST(Search, OneLegalMoveAndDepthLimit)
{
    harness_start();
    SearchOutcome r = harness_search("7k/8/5Q2/8/8/8/8/K5R1 b - -", 8);
    EXPECT_EQ(text_of(r.best), "h8h7");
    r = harness_search("r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -", 7);
    EXPECT_EQ(r.depth, 7);
    EXPECT_NE(r.best, 0);
}

TEST(Search, SelectivityZeroStillFindsTheMate)
{
    harness_start();
    search_config.selectivity = 0;
    build_search_params();
    SearchOutcome r = harness_search("r2qkb1r/pp2nppp/3p4/2pNN1B1/2BnP3/3P4/PPP2PPP/R2bK2R w KQkq -", 4);
    EXPECT_EQ(r.score, 9996);
    search_config.selectivity = 100;
    build_search_params();
}

