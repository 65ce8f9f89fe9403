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
const std::string OPENING = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
const std::string ROOK_CHECK = "6k1/5ppp/8/8/8/8/5PPP/R5K1 w - -";

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

// Blanks inside an operand vanish, so "Nf3 Nc3" is the one piece "Nf3Nc3",
// which names no move. Quotes and a check mark do not hide a move; an
// operand naming no legal move scores nothing, for "am" as for "bm".
TEST(EpdScoring, BestAndAvoidMoves)
{
    const struct {
        std::string line;
        const char* played;
        int bm, am;
    } cases[] = {{OPENING + " bm Nf3 Nc3; am e4; id \"x\";", "Nf3", 0, 1},
                 {OPENING + " bm Nf3 Nc3; am e4; id \"x\";", "Nc3", 0, 1},
                 {OPENING + " bm Nf3 Nc3; am e4; id \"x\";", "e2e4", 0, 0},
                 {OPENING + " bm Nf3,Nc3; id \"x\";", "Nf3", 1, 0},
                 {OPENING + " bm Nf3,Nc3; id \"x\";", "Nc3", 1, 0},
                 {OPENING + " bm Nf3,Nc3; id \"x\";", "e4", 0, 0},
                 {OPENING + " bm Nf3; am e5;", "g1f3", 1, 0},
                 {OPENING + " bm Nf3; am e5;", "b1c3", 0, 0},
                 {ROOK_CHECK + " bm \"Ra8+\",Ra9,Kh1h2;", "a1a8", 1, 0}};
    for (const auto& c : cases) {
        Scored s(c.line);
        Move m = s.move(c.played);
        EXPECT_EQ(bm_hits(&s.g->pos, s.f.bm, m), c.bm) << c.line << " " << c.played;
        EXPECT_EQ(am_hit(&s.g->pos, s.f.am, m), c.am) << c.line << " " << c.played;
        EXPECT_EQ(bm_hits(&s.g->pos, "", m), 0);
    }
    EXPECT_STREQ(Scored(OPENING + " bm Nf3 Nc3;").f.bm, "Nf3Nc3");
}

// c0 lists move=points: the move played earns its points, the largest
// value wherever it stands is what was possible; a move it does not list
// earns nothing; without any "=" nothing at all; a huge number stays bounded.
TEST(EpdScoring, PointsFromTheC0Operation)
{
    Scored s(OPENING + " bm e4; c0 \"e4=10, d4=8\"; id \"x\";");
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
    Scored check(ROOK_CHECK + " c0 \"Ra8+=10, Kf1=3\";");
    EXPECT_EQ(c0_points(&check.g->pos, check.f.c0, check.move("a1a8")).points, 10);
}
