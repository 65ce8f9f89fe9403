// Slider attacks as this build computes them (one table read by bit
// extraction, or rays and their first blockers, which processors without
// the instruction run): the perft counts of the data. This file uses the board alone, so that a
// second, small build can check the ray path on any machine.
#include "board/attacks.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace
{

uint64_t perft(Position* pos, int depth)
{
    MoveEntry list[MAX_MOVES];
    gen_all(pos, list);
    uint64_t n = 0;
    for (MoveEntry* e = list; e->move != MOVE_END; e++) {
        if (!is_legal(pos, pos->side, e->move))
            continue;
        if (depth == 1) {
            n++;
            continue;
        }
        make_move(pos, e->move);
        n += perft(pos, depth - 1);
        unmake_move(pos);
    }
    return n;
}

} // namespace

TEST(SliderPaths, TheBuildUsesThePathItWasAskedFor)
{
#if defined(KORVEL_RAY_ATTACKS)
    EXPECT_FALSE(SLIDERS_BY_EXTRACTION);
#elif defined(__BMI2__)
    EXPECT_TRUE(SLIDERS_BY_EXTRACTION);
#endif
}

// Every data position to the deepest depth whose count stays within 300,000
// (the engine's own perft, deeper, is tested elsewhere).
TEST(SliderPaths, PerftCountsOfTheData)
{
    init_zobrist();
    std::ifstream in(std::string(KORVEL_DATA_DIR) + "/perft.epd");
    ASSERT_TRUE(in) << KORVEL_DATA_DIR;
    static Game game;
    std::string line;
    int checked = 0;
    while (std::getline(in, line)) {
        size_t semi = line.find(';');
        if (semi == std::string::npos)
            continue;
        Position* pos = game_init(&game);
        set_position(pos, line.substr(0, semi).c_str());
        ASSERT_EQ(position_problem(pos), nullptr) << line;
        std::istringstream ops(line.substr(semi));
        std::string tag;
        uint64_t expected;
        for (int depth = 1; ops >> tag >> expected && expected <= 300000; depth++)
            ASSERT_EQ(perft(pos, depth), expected) << line << " depth " << depth;
        checked++;
    }
    EXPECT_EQ(checked, 51);
}
