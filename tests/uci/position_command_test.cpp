#include "board/draw.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "search/limits.h"
#include "support/test_positions.h"
#include "uci/game.h"
#include "uci/uci_commands.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace
{

class PositionCommand : public ::testing::Test
{
  protected:
    std::string fen() const
    {
        char text[128];
        write_fen(game_position(), text);
        return text;
    }
    void run(const char* args)
    {
        char buffer[512];
        std::strcpy(buffer, args);
        position_command(buffer);
    }
    void SetUp() override { reset_game_to_start(); }
};

} // namespace

TEST_F(PositionCommand, AppliesMovesAndStopsAtTheFirstIllegalOne)
{
    run("startpos moves e2e4 e7e5");
    EXPECT_EQ(fen(), "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6");
    EXPECT_EQ(game_position()->game_ply, 2);
    run("fen 4k3/P7/8/8/8/8/8/4K3 w - - 0 1 moves a7a8n e8d7");
    EXPECT_EQ(fen(), "N7/3k4/8/8/8/8/8/4K3 w - -");
    run("startpos moves e2e4 e7e4 g1f3");
    EXPECT_EQ(fen(), "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3");
    run("startpos moves e2e4 zz");
    EXPECT_EQ(game_position()->game_ply, 1);
}

TEST_F(PositionCommand, RefusedPositionsKeepThePreviousOne)
{
    run("startpos moves d2d4");
    std::string before = fen();
    run("fen 8/8/8/8/8/8/8/8 w - - 0 1 moves e2e4");
    EXPECT_EQ(fen(), before);
    run("fen");
    EXPECT_EQ(fen(), before);
    run("nothing useful");
    EXPECT_EQ(fen(), before);
}

// A game that reaches 760 plies of history keeps its last 256 records and
// goes on from there: the ply count follows, the positions stay the same,
// and the repetitions and takebacks the kept records serve still work.
TEST_F(PositionCommand, VeryLongGamesKeepTheirHistoryBounded)
{
    std::string moves = "startpos moves";
    for (int i = 0; i < 220; i++)
        moves += " g1f3 g8f6 f3g1 f6g8";
    std::vector<char> buffer(moves.begin(), moves.end());
    buffer.push_back(0);
    position_command(buffer.data());
    EXPECT_EQ(game_position()->game_ply, 880 - 760 + 256);
    EXPECT_EQ(fen(), START_FEN);
    EXPECT_TRUE(is_draw(game_position(), 0)) << "the start position stands for the third time";
    for (int i = 0; i < 4; i++)
        unmake_move(game_position());
    EXPECT_EQ(fen(), START_FEN);
    EXPECT_EQ(game_position()->game_ply, 880 - 760 + 252);
    unmake_move(game_position());
    EXPECT_EQ(fen(), "rnbqkb1r/pppppppp/5n2/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -");

    moves = "startpos moves";
    for (int i = 0; i < 190; i++)
        moves += " g1f3 g8f6 f3g1 f6g8";
    buffer.assign(moves.begin(), moves.end());
    buffer.push_back(0);
    position_command(buffer.data());
    EXPECT_EQ(game_position()->game_ply, 760 - 760 + 256) << "trimmed on reaching the limit";
}

