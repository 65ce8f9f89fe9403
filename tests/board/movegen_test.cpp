#include "board/attack_queries.h"
#include "board/makemove.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "board/zobrist.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

std::vector<Move> moves_of(MoveEntry* begin, MoveEntry* end)
{
    std::vector<Move> out;
    for (MoveEntry* e = begin; e != end; e++)
        out.push_back(e->move);
    return out;
}

Move mv(const char* from, const char* to, Move flags = 0)
{
    return Move(make_move_code(make_square(from[0] - 'a', from[1] - '1'), make_square(to[0] - 'a', to[1] - '1'))
                | flags);
}

} // namespace

TEST(MoveGen, GenerationOrderAndPromotions)
{
    Game* g = new_test_game();
    // Pawn on b7 with a rook to take on a8 and a square ahead: its moves come
    // only from the promotion generator, Q N B R per target.
    set_test_position(g, "r3k3/1P6/8/8/8/8/8/4K3 w - -");
    MoveEntry list[MAX_MOVES];
    EXPECT_EQ(gen_captures(&g->pos, WHITE, list, NO_SQUARE) - list, 0);
    MoveEntry* end = gen_quiets(&g->pos, WHITE, list, NO_SQUARE);
    for (MoveEntry* e = list; e != end; e++)
        EXPECT_NE(piece_type(e->piece), PAWN);
    end = gen_promotions(&g->pos, WHITE, true, list);
    std::vector<Move> expected = {mv("b7", "b8", PROMO_QUEEN),  mv("b7", "b8", PROMO_KNIGHT),
                                  mv("b7", "b8", PROMO_BISHOP), mv("b7", "b8", PROMO_ROOK),
                                  mv("b7", "a8", PROMO_QUEEN),  mv("b7", "a8", PROMO_KNIGHT),
                                  mv("b7", "a8", PROMO_BISHOP), mv("b7", "a8", PROMO_ROOK)};
    EXPECT_EQ(moves_of(list, end), expected);
    EXPECT_EQ(gen_promotions(&g->pos, WHITE, false, list) - list, 2);

    // Pawn captures: towards the a-file first, each group by target square.
    set_test_position(g, "4k3/8/8/1p1p1p2/2P1P3/8/8/4K3 w - -");
    end = gen_captures(&g->pos, WHITE, list, NO_SQUARE);
    expected = {mv("c4", "b5"), mv("e4", "d5"), mv("c4", "d5"), mv("e4", "f5")};
    EXPECT_EQ(moves_of(list, end), expected);
    free_test_game(g);
}

TEST(MoveGen, EvasionsAndCastling)
{
    Game* g = new_test_game();
    // The pawn that just double-stepped to c4 gives check; with it as the
    // checker, the en-passant capture is still offered.
    set_test_position(g, "8/8/8/3k4/2Pp4/8/8/3K4 b - c3");
    MoveEntry list[MAX_MOVES];
    MoveEntry* end = gen_captures(&g->pos, BLACK, list, make_square(2, 3));
    EXPECT_EQ(moves_of(list, end), (std::vector<Move>{mv("d4", "c3"), mv("d5", "c4")}));

    // Castling is generated in check and through attacked squares.
    set_test_position(g, "4k3/8/8/8/8/8/5r2/R3K2R w KQ -");
    end = gen_quiets(&g->pos, WHITE, list, NO_SQUARE);
    std::vector<Move> got = moves_of(list, end);
    EXPECT_EQ(got[got.size() - 2], mv("e1", "g1"));
    EXPECT_EQ(got.back(), mv("e1", "c1"));

    // No moves at all: only the end marker.
    set_test_position(g, "k7/2Q5/1K6/8/8/8/8/8 b - -");
    EXPECT_EQ(gen_legal(&g->pos, list), 0);
    // Bare kings in a corner still have moves; a list of nothing is just the marker.
    set_test_position(g, "8/8/8/8/8/8/8/K1k5 w - -");
    MoveEntry* end_marker = gen_all(&g->pos, list);
    EXPECT_EQ(end_marker->move, MOVE_END);
    EXPECT_EQ(end_marker - list, 3);
    free_test_game(g);
}

TEST(MoveGen, PseudoLegalityOfStoredMoves)
{
    Game* g = new_test_game();
    // Castling needs the right, the king and rook at home and every square
    // between them empty; attacks are left to the legality test.
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
        {"r3k2r/8/8/8/8/8/8/4K3 b kq -", false, false},    // Black to move: e1 castles are not his
    };
    for (const auto& c : castles) {
        set_test_position(g, c.fen);
        EXPECT_EQ(is_pseudo_legal(&g->pos, mv("e1", "g1")), c.king_side) << c.fen;
        EXPECT_EQ(is_pseudo_legal(&g->pos, mv("e1", "c1")), c.queen_side) << c.fen;
    }
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

    // Every generated move passes; moves of the other side and odd codes do not.
    for (const PerftCase& c : load_perft_cases()) {
        set_test_position(g, c.fen);
        MoveEntry list[MAX_MOVES];
        gen_all(&g->pos, list);
        for (MoveEntry* e = list; e->move != MOVE_END; e++)
            ASSERT_TRUE(is_pseudo_legal(&g->pos, e->move)) << c.fen << " " << e->move;
    }
    set_test_position(g, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e7", "e5")));
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e2", "e5")));
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e2", "e4", PROMO_QUEEN)));
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("c1", "e3"))); // blocked bishop
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e2", "d3"))); // pawn diagonal to an empty square
    set_test_position(g, "8/4P3/8/8/8/8/k7/4K3 w - -");
    EXPECT_FALSE(is_pseudo_legal(&g->pos, mv("e7", "e8"))); // never generated without a flag
    free_test_game(g);
}

// The moves to a set of squares are exactly the full list's moves to those
// squares, in the same order: captures (en passant too), promotions of all
// four kinds, double steps and castling onto a square of the set.
TEST(MoveGen, MovesToChosenSquares)
{
    Game* g = new_test_game();
    std::vector<std::string> fens;
    for (const PerftCase& c : load_perft_cases())
        fens.push_back(c.fen);
    uint64_t x = 0x9E3779B97F4A7C15ULL;
    int compared = 0;
    for (const std::string& fen : fens) {
        set_test_position(g, fen);
        MoveEntry all[MAX_MOVES], some[MAX_MOVES];
        MoveEntry* end = gen_all(&g->pos, all);
        for (int round = 0; round < 200; round++) {
            x ^= x << 13, x ^= x >> 7, x ^= x << 17;
            Bitboard mask = round < 64 ? bit(round) : (x & (x >> 11) & (x >> 23));
            std::vector<Move> expected;
            for (MoveEntry* e = all; e != end; e++)
                if (mask & bit(move_to(e->move)))
                    expected.push_back(e->move);
            MoveEntry* stop = gen_all_to(&g->pos, mask, some);
            ASSERT_EQ(stop->move, MOVE_END);
            ASSERT_EQ(moves_of(some, stop), expected) << fen << " mask " << mask;
            compared++;
        }
    }
    EXPECT_EQ(compared, 200 * int(fens.size()));
    free_test_game(g);
}

namespace
{

// gen_pseudo_legal must give, entry for entry, what the three generators give in turn.
void expect_every_matches_parts(const Position* pos, int checker)
{
    MoveEntry parts[MAX_MOVES], every[MAX_MOVES];
    MoveEntry* end = gen_captures(pos, pos->side, parts, checker);
    end = gen_promotions(pos, pos->side, true, end);
    end = gen_quiets(pos, pos->side, end, checker);
    MoveEntry* every_end = gen_pseudo_legal(pos, pos->side, every, checker);
    ASSERT_EQ(every_end - every, end - parts);
    for (int i = 0; i < end - parts; i++) {
        ASSERT_EQ(every[i].move, parts[i].move) << i;
        ASSERT_EQ(every[i].piece, parts[i].piece) << i;
        ASSERT_EQ(every[i].captured, parts[i].captured) << i;
    }
}

} // namespace

TEST(MoveGen, EveryMoveInOneGoMatchesTheStages)
{
    Game* g = new_test_game();
    for (const PerftCase& c : load_perft_cases()) {
        set_test_position(g, c.fen);
        Position* pos = &g->pos;
        // The position and every one a move away, with the checker as the
        // search finds it and without.
        MoveEntry list[MAX_MOVES];
        gen_all(pos, list);
        expect_every_matches_parts(pos, NO_SQUARE);
        for (MoveEntry* e = list; e->move != MOVE_END; e++) {
            make_move(pos, e->move);
            int checker = find_attacker(pos, pos->king_square[pos->side], pos->side ^ 1, occupancy(pos));
            expect_every_matches_parts(pos, checker);
            expect_every_matches_parts(pos, NO_SQUARE);
            unmake_move(pos);
        }
    }
    free_test_game(g);
}

TEST(Zobrist, KeysAreFixedAndWellSpread)
{
    free_test_game(new_test_game()); // makes the keys once
    uint64_t first = ZOBRIST[0], last = ZOBRIST[1023];
    EXPECT_EQ(init_zobrist(), 0);
    EXPECT_EQ(first, ZOBRIST[0]);
    EXPECT_EQ(last, ZOBRIST[1023]);
    for (int i = 0; i < 1024; i++)
        ASSERT_GE(popcount(ZOBRIST[i]), 24);
}
