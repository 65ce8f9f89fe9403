#include "eval/params.h"
#include "support/engine_process.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace
{

void reset_weights()
{
    for (auto& pair : eval_options.personality)
        pair[0] = pair[1] = 100;
}

} // namespace

TEST(Params, DefaultsAndPersonality)
{
    reset_weights();
    init_eval_params(0);
    EXPECT_EQ(param_count, PARAM_ROWS);
    EXPECT_EQ(param_table[MTL_ROOK].score, 729 * 65536 + 498);
    EXPECT_STREQ(param_table[PST_Q2 + 63].name, "PST_Q2");
    EXPECT_STREQ(param_table[TMP0 + 8].name, "tmp8");

    eval_options.personality[WEIGHT_ACTIVITY_KNIGHT][0] = 200;
    init_eval_params(0);
    EXPECT_EQ(opening_of(param_table[KNIGHT_MOBILITY].score), 102);
    EXPECT_EQ(opening_of(param_table[KNIGHT_OUTPOST_ATK].score), 64); // matched by two patterns
    EXPECT_EQ(endgame_of(param_table[KNIGHT_MOBILITY].score), 47);
    EXPECT_EQ(opening_of(param_table[PST_N1 + 56].score), -144);
    EXPECT_EQ(opening_of(param_table[BISHOP_PAIR].score), 29);
    reset_weights();

    // Halves round away from zero: -5 * 0.5 and 5 * 0.5.
    eval_options.personality[WEIGHT_PASSED_PAWNS][0] = 50;
    eval_options.personality[WEIGHT_ACTIVITY_ROOK][1] = 50;
    init_eval_params(0);
    EXPECT_EQ(opening_of(param_table[PPAWN_FKING_DIST].score), -3);
    EXPECT_EQ(endgame_of(param_table[ROOK_MOB2].score), 3);
    reset_weights();

    init_eval_params(1); // rows laid down only
    EXPECT_EQ(param_table[MTL_ROOK].score, 0);
    init_eval_params(0);
}

TEST(Params, ParamsFileOverridesDefaultsWithinBounds)
{
    char old[4096];
    ASSERT_NE(getcwd(old, sizeof old), nullptr);
    std::string dir = make_temp_dir();
    ASSERT_EQ(chdir(dir.c_str()), 0);
    reset_weights();

    std::ofstream("params.txt") << "fset(\"mtl_pawn\",90,110);\n";
    init_eval_params(0);
    EXPECT_EQ(param_table[MTL_PAWN].score, 110 * 65536 + 90);
    EXPECT_EQ(param_table[MTL_KNIGHT].score, 413 * 65536 + 361);

    // A skipped row: the error is reported and the knight row takes the bishop's numbers.
    std::ofstream("params.txt") << "fset(\"mtl_pawn\",100,100);\nfset(\"mtl_bishop\",300,350);\n\nbad line\n";
    testing::internal::CaptureStdout();
    init_eval_params(0);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "error mtl_bishop  mtl_knight\n");
    EXPECT_EQ(param_table[MTL_KNIGHT].score, 350 * 65536 + 300);
    EXPECT_EQ(param_table[MTL_BISHOP].score, 426 * 65536 + 361);

    // Values from the file are not scaled by the weights.
    eval_options.personality[WEIGHT_MTL_PAWN][0] = 50;
    std::ofstream("params.txt") << "fset(\"mtl_pawn\",100,100);\n";
    init_eval_params(0);
    EXPECT_EQ(opening_of(param_table[MTL_PAWN].score), 100);
    reset_weights();

    // A value a packed half cannot hold leaves its row as it was; the
    // next line still goes to the next row.
    std::ofstream("params.txt") << "fset(\"mtl_pawn\",90,110);\nfset(\"mtl_knight\",99999,5);\n"
                                   "fset(\"mtl_bishop\",7,-99999999999999999999);\nfset(\"mtl_rook\",-32768,32767);\n";
    testing::internal::CaptureStdout();
    init_eval_params(0);
    out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("info string params.txt: mtl_knight out of range, row kept\n"), std::string::npos) << out;
    EXPECT_NE(out.find("mtl_bishop out of range"), std::string::npos) << out;
    EXPECT_EQ(param_table[MTL_KNIGHT].score, 413 * 65536 + 361);
    EXPECT_EQ(param_table[MTL_BISHOP].score, 426 * 65536 + 361);
    EXPECT_EQ(opening_of(param_table[MTL_ROOK].score), -32768);
    EXPECT_EQ(endgame_of(param_table[MTL_ROOK].score), 32767);

    unlink("params.txt");
    init_eval_params(0);
    ASSERT_EQ(chdir(old), 0);
}

// Rows whose values are known by name stay off the tuner's hands: the
// squares listed for the king, knight, pawn, rook and queen tables, the
// pawns' first and last ranks (and the doubled pawns' second) and the
// king's queen-side files.
TEST(Params, StatedRowsAreFrozen)
{
    set_frozen("all", false);
    init_eval_params(0);
    const std::tuple<int, const char*, int> tables[] = {
        {PST_K, "e1 f6 g1 h1", 36},     {PST_N1, "a8 e4 f5 h8", 4}, {PST_P1, "b7 f6 g2", 19}, {PST_P2, "f7 g6", 18},
        {PST_CP, "c7 d7 e7 f5 f7", 21}, {PST_DP, "d6", 25},         {PST_R1, "e6", 1},        {PST_Q1, "b7", 1}};
    for (auto [table, squares, count] : tables) {
        std::istringstream names(squares);
        for (std::string sq; names >> sq;)
            EXPECT_TRUE(param_table[table + (sq[1] - '1') * 8 + (sq[0] - 'a')].frozen) << table << " " << sq;
        int frozen = 0;
        for (int sq = 0; sq < 64; sq++)
            frozen += param_table[table + sq].frozen != 0;
        EXPECT_EQ(frozen, count) << table;
    }
    EXPECT_FALSE(param_table[PST_N1 + 36].frozen); // e5
}
