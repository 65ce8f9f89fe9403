// Scoring the engine's move against a test suite's answers, from the EPD
// line through the splitter as the suite tool reads it.
#include "board/epd.h"
#include "board/notation.h"
#include "support/test_positions.h"
#include "tools/epd_scoring.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

// Knights on b1 and g1 (and nothing else in the way): Nf3 and Nc3 are both legal.
const char* const OPENING = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

struct Scored {
    Game* g = new_test_game();
    EpdFields f{};
    Scored(const std::string& line)
    {
        split_epd(line.c_str(), &f);
        set_test_position(g, f.fen);
    }
    ~Scored() { free_test_game(g); }
    Move move(const char* text)
    {
        Move m = 0;
        EXPECT_EQ(parse_move(&g->pos, text, &m), 1) << text;
        return m;
    }
};

} // namespace

TEST(EpdScoring, BestMoveListsFollowTheSplitter)
{
    // Blanks inside an operand vanish, so "Nf3 Nc3" is the single piece
    // "Nf3Nc3", which names no move: never correct, whatever is played.
    Scored blanks(std::string(OPENING) + " bm Nf3 Nc3; id \"x\";");
    EXPECT_STREQ(blanks.f.bm, "Nf3Nc3");
    EXPECT_EQ(bm_hits(&blanks.g->pos, blanks.f.bm, blanks.move("Nf3")), 0);
    EXPECT_EQ(bm_hits(&blanks.g->pos, blanks.f.bm, blanks.move("Nc3")), 0);

    Scored commas(std::string(OPENING) + " bm Nf3,Nc3; id \"x\";");
    EXPECT_EQ(bm_hits(&commas.g->pos, commas.f.bm, commas.move("Nf3")), 1);
    EXPECT_EQ(bm_hits(&commas.g->pos, commas.f.bm, commas.move("Nc3")), 1);
    EXPECT_EQ(bm_hits(&commas.g->pos, commas.f.bm, commas.move("e4")), 0);

    Scored single(std::string(OPENING) + " bm Nf3;");
    EXPECT_EQ(bm_hits(&single.g->pos, single.f.bm, single.move("g1f3")), 1);
    EXPECT_EQ(bm_hits(&single.g->pos, single.f.bm, single.move("b1c3")), 0);

    // Quotes and a check mark around a move do not hide it; a piece that is
    // no legal move counts nothing.
    Scored check("6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - bm \"Ra8+\",Ra9,Kh1h2;");
    EXPECT_EQ(bm_hits(&check.g->pos, check.f.bm, check.move("a1a8")), 1);
    EXPECT_EQ(bm_hits(&check.g->pos, "", check.move("a1a8")), 0);
}

// c0 lists move=points: the move played earns its points, the largest
// value wherever it stands is what was possible; a move it does not list
// earns nothing; without any "=" nothing at all; a huge number stays bounded.
TEST(EpdScoring, PointsFromTheC0Operation)
{
    Scored s(std::string(OPENING) + " bm e4; c0 \"e4=10, d4=8\"; id \"x\";");
    EXPECT_STREQ(s.f.c0, "\"e4=10,d4=8\"");
    auto points = [&](const char* c0, const char* move) {
        C0Result r = c0_points(&s.g->pos, c0, s.move(move));
        return std::make_pair(r.points, r.possible);
    };
    EXPECT_EQ(points(s.f.c0, "d4"), std::make_pair(8, 10));
    EXPECT_EQ(points(s.f.c0, "e4"), std::make_pair(10, 10));
    EXPECT_EQ(points(s.f.c0, "Nf3"), std::make_pair(0, 10));
    EXPECT_EQ(points("\"c4=3,Nf3=7,e4=2\"", "e4"), std::make_pair(2, 7));
    EXPECT_EQ(points("\"e4 d4\"", "e4"), std::make_pair(0, 0));
    std::pair<int, int> huge = points("e4=99999999999999999999", "e4");
    EXPECT_GT(huge.first, 0);
    EXPECT_EQ(huge.first, huge.second);
    Scored check("6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - c0 \"Ra8+=10, Kf1=3\";");
    EXPECT_EQ(c0_points(&check.g->pos, check.f.c0, check.move("a1a8")).points, 10);
}
