#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

std::vector<Move> moves_of(const MoveEntry* begin, const MoveEntry* end)
{
    std::vector<Move> out;
    for (const MoveEntry* e = begin; e != end; e++)
        out.push_back(e->move);
    return out;
}

Move mv(const char* from, const char* to, Move flags = 0)
{
    return Move(make_move_code(make_square(from[0] - 'a', from[1] - '1'), make_square(to[0] - 'a', to[1] - '1'))
                | flags);
}

} // namespace

TEST(MoveGen, GenerationOrderEvasionsAndCastling)
{
    Game* g = new_test_game();
    MoveEntry list[MAX_MOVES];
    // A pawn on b7 with a rook to take on a8: its moves come only from the
    // promotion generator, Q N B R per target.
    set_test_position(g, "r3k3/1P6/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(gen_captures(&g->pos, WHITE, list, NO_SQUARE) - list, 0);
    for (MoveEntry* e = list; e != gen_quiets(&g->pos, WHITE, list, NO_SQUARE); e++)
        EXPECT_NE(piece_type(e->piece), PAWN);
    MoveEntry* end = gen_promotions(&g->pos, WHITE, true, list);
    EXPECT_EQ(moves_of(list, end), (std::vector<Move>{mv("b7", "b8", PROMO_QUEEN), mv("b7", "b8", PROMO_KNIGHT),
                                                      mv("b7", "b8", PROMO_BISHOP), mv("b7", "b8", PROMO_ROOK),
                                                      mv("b7", "a8", PROMO_QUEEN), mv("b7", "a8", PROMO_KNIGHT),
                                                      mv("b7", "a8", PROMO_BISHOP), mv("b7", "a8", PROMO_ROOK)}));
    EXPECT_EQ(gen_promotions(&g->pos, WHITE, false, list) - list, 2);
    // Pawn captures: towards the a-file first, each group by target square.
    set_test_position(g, "4k3/8/8/1p1p1p2/2P1P3/8/8/4K3 w - -");
    end = gen_captures(&g->pos, WHITE, list, NO_SQUARE);
    EXPECT_EQ(moves_of(list, end), (std::vector<Move>{mv("c4", "b5"), mv("e4", "d5"), mv("c4", "d5"), mv("e4", "f5")}));
    // The pawn that just double-stepped gives check: taking it en passant
    // is still offered.
    set_test_position(g, "8/8/8/3k4/2Pp4/8/8/3K4 b - c3");
    end = gen_captures(&g->pos, BLACK, list, make_square(2, 3));
    EXPECT_EQ(moves_of(list, end), (std::vector<Move>{mv("d4", "c3"), mv("d5", "c4")}));
    // Castling is generated in check and through attacked squares, last.
    set_test_position(g, "4k3/8/8/8/8/8/5r2/R3K2R w KQ -");
    std::vector<Move> got = moves_of(list, gen_quiets(&g->pos, WHITE, list, NO_SQUARE));
    EXPECT_EQ(std::vector<Move>(got.end() - 2, got.end()), (std::vector<Move>{mv("e1", "g1"), mv("e1", "c1")}));
    set_test_position(g, "k7/2Q5/1K6/8/8/8/8/8 b - -");
    EXPECT_EQ(gen_legal(&g->pos, list), 0);
    set_test_position(g, "8/8/8/8/8/8/8/K1k5 w - -");
    end = gen_all(&g->pos, list);
    EXPECT_EQ(end->move, MOVE_END);
    EXPECT_EQ(end - list, 3);
    free_test_game(g);
}

// Moves that did not come from a generator (book, table, console): castling
// needs the right, the king and rook at home and the squares between empty;
// attacks are left to the legality test.
TEST(MoveGen, PseudoLegalityOfStoredMoves)
{
    Game* g = new_test_game();
    struct {
        const char* fen;
        bool king_side, queen_side;
    } castles[] = {
        {"4k3/8/8/8/8/8/8/R3K2R w KQ -", true, true},
        {"4k3/8/8/8/8/8/8/R3K2R w - -", false, false},     // no right at all
        {"4k3/8/8/8/8/8/8/R3K2R w K -", true, false},      // one right only
        {"4k3/8/8/8/8/8/8/RN2K2R w KQ -", true, false},    // the knight on b1
        {"4k3/8/8/8/8/8/8/R1B1K1NR w KQ -", false, false}, // c1 and g1 taken
        {"4k3/8/8/8/8/8/8/4K2R w KQ -", true, false},      // no rook on a1
        {"3rk3/8/8/8/8/8/8/R3K3 w Q -", false, true},      // d1 attacked: pseudo-legal only
        {"r3k2r/8/8/8/8/8/8/4K3 b kq -", false, false}     // Black to move: e1 castles are not his
    };
    for (const auto& c : castles) {
        set_test_position(g, c.fen);
        EXPECT_EQ(is_pseudo_legal(&g->pos, mv("e1", "g1")), c.king_side) << c.fen;
        EXPECT_EQ(is_pseudo_legal(&g->pos, mv("e1", "c1")), c.queen_side) << c.fen;
    }
    g->pos.chess960 = true; // the king takes his own rook, where a right names it
    set_test_position(g, "4k3/8/8/8/8/8/8/R3K2R w H -");
    EXPECT_TRUE(is_pseudo_legal(&g->pos, mv("e1", "h1")) && !is_pseudo_legal(&g->pos, mv("e1", "a1")));
    g->pos.chess960 = false;
    set_test_position(g, "r3k2r/8/8/8/8/8/8/4K3 b q -");
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e8", "g8")));
    EXPECT_TRUE(is_pseudo_legal(&g->pos, mv("e8", "c8")));
    // The full test also refuses castling through an attacked square and
    // moves that leave the king in check.
    set_test_position(g, "3rk3/8/8/8/8/8/8/R3K3 w Q -");
    EXPECT_FALSE(is_legal_move(&g->pos, mv("e1", "c1")));
    EXPECT_TRUE(is_legal_move(&g->pos, mv("a1", "a8")));
    set_test_position(g, "4k3/4r3/8/8/8/8/4B3/4K3 w - -");
    EXPECT_FALSE(is_legal_move(&g->pos, mv("e2", "d3")));
    EXPECT_FALSE(is_legal_move(&g->pos, 0));
    set_test_position(g, START_FEN);
    for (Move m : {mv("e7", "e5"), mv("e2", "e5"), mv("e2", "e4", PROMO_QUEEN), mv("c1", "e3"), mv("e2", "d3")})
        EXPECT_FALSE(is_pseudo_legal(&g->pos, m)) << m;
    set_test_position(g, "8/4P3/8/8/8/8/k7/4K3 w - -");
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e7", "e8"))); // a promotion needs its piece
    free_test_game(g);
}

// Over every data position and every position a move away: each generated
// move is pseudo-legal; the one-call generator gives entry for entry what
// the three stages give in turn (with the checker as the search finds it,
// and without); and the moves to a set of squares are the full list's
// moves to those squares, in the same order.
TEST(MoveGen, GeneratorsAgree)
{
    Game* g = new_test_game();
    uint64_t x = 0x9E3779B97F4A7C15ULL;
    auto check = [&](const Position* pos, int checker) {
        MoveEntry parts[MAX_MOVES], every[MAX_MOVES], some[MAX_MOVES];
        MoveEntry* end = gen_captures(pos, pos->side, parts, checker);
        end = gen_quiets(pos, pos->side, gen_promotions(pos, pos->side, true, end), checker);
        MoveEntry* every_end = gen_pseudo_legal(pos, pos->side, every, checker);
        ASSERT_EQ(every_end - every, end - parts);
        for (int i = 0; i < end - parts; i++) {
            ASSERT_EQ(every[i].move, parts[i].move) << i;
            ASSERT_EQ(every[i].piece, parts[i].piece) << i;
            ASSERT_EQ(every[i].captured, parts[i].captured) << i;
            ASSERT_TRUE(is_pseudo_legal(pos, parts[i].move)) << parts[i].move;
        }
        MoveEntry all[MAX_MOVES];
        MoveEntry* all_end = gen_all(pos, all);
        for (int round = 0; round < 8; round++) {
            x ^= x << 13, x ^= x >> 7, x ^= x << 17;
            Bitboard mask = x & (x >> 11) & (x >> 23);
            std::vector<Move> expected;
            for (MoveEntry* e = all; e != all_end; e++)
                if (mask & bit(move_to(e->move)))
                    expected.push_back(e->move);
            MoveEntry* stop = gen_all_to(pos, mask, some);
            ASSERT_EQ(stop->move, MOVE_END);
            ASSERT_EQ(moves_of(some, stop), expected) << mask;
        }
    };
    for (const PerftCase& c : load_perft_cases()) {
        set_test_position(g, c.fen);
        Position* pos = &g->pos;
        check(pos, NO_SQUARE);
        MoveEntry list[MAX_MOVES];
        gen_all(pos, list);
        for (MoveEntry* e = list; e->move != MOVE_END; e++) {
            if (!is_legal(pos, pos->side, e->move))
                continue;
            make_move(pos, e->move);
            check(pos, find_attacker(pos, pos->king_square[pos->side], pos->side ^ 1, occupancy(pos)));
            check(pos, NO_SQUARE);
            unmake_move(pos);
        }
    }
    free_test_game(g);
}
