#include "board/notation.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace
{

// The position with `square` mapping every man to its new square (and
// `swap_colours` giving it to the other side), as FEN text.
std::string transformed(const Position* pos, int (*square)(int), bool swap_colours)
{
    char board[64] = {};
    for (int sq = 0; sq < 64; sq++)
        if (int piece = pos->board[sq]) {
            char c = "?pnbrqk"[piece_type(piece)];
            bool white = (piece_side(piece) == WHITE) != swap_colours;
            board[square(sq)] = white ? char(c - 'a' + 'A') : c;
        }
    std::string fen;
    for (int rank = 7; rank >= 0; rank--) {
        for (int file = 0; file < 8; file++)
            fen += board[rank * 8 + file] ? board[rank * 8 + file] : '1';
        fen += rank ? "/" : "";
    }
    bool white_to_move = (pos->side == WHITE) != swap_colours;
    int rights = swap_colours ? (pos->castling & 3) << 2 | pos->castling >> 2 : pos->castling;
    std::string castling;
    for (int i = 0; i < 4; i++)
        castling += rights >> i & 1 ? "KQkq"[i] : '\0';
    std::erase(castling, '\0');
    std::string ep = pos->ep_square == NO_SQUARE ? "-" : SQUARE_NAMES[square(pos->ep_square)];
    return fen + (white_to_move ? " w " : " b ") + (castling.empty() ? "-" : castling) + " " + ep;
}

int flip(int sq)
{
    return sq ^ 56;
}
int mirror(int sq)
{
    return sq ^ 7;
}

} // namespace

// An asymmetric term is a bug: a position and its colour-flipped twin, and
// one without castling rights and its left-right mirror, evaluate alike
// from the side to move.
TEST(EvalSymmetry, ColourFlipAndMirror)
{
    Game* g = new_test_game();
    auto c = std::make_unique<EvalCaches>();
    init_evaluation();
    init_eval_params(0);
    int compared = 0;
    for (const std::string& fen : load_test_fens(10000)) {
        set_test_position(g, fen);
        int v = evaluate(&g->pos, c.get(), g->pos.side, 0, 0, nullptr);
        std::vector<std::string> twins = {transformed(&g->pos, flip, true)};
        if (!g->pos.castling) // castling rights have no mirror image
            twins.push_back(transformed(&g->pos, mirror, false));
        for (const std::string& twin : twins) {
            Game* h = new_test_game();
            set_test_position(h, twin);
            ASSERT_EQ(evaluate(&h->pos, c.get(), h->pos.side, 0, 0, nullptr), v) << fen << " / " << twin;
            free_test_game(h);
        }
        compared++;
    }
    EXPECT_GT(compared, 1000);
    free_test_game(g);
}
