#include "board/fen.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "support/test_positions.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace
{

std::vector<std::string> fields_of(const std::string& fen)
{
    std::istringstream in(fen);
    std::vector<std::string> f;
    std::string w;
    while (in >> w)
        f.push_back(w);
    while (f.size() < 4)
        f.push_back("-");
    return f;
}

// Board upside down with colours swapped: the same position for the other side.
std::string colour_flip(const std::string& fen)
{
    std::vector<std::string> f = fields_of(fen);
    std::vector<std::string> ranks;
    std::stringstream placement(f[0]);
    std::string rank;
    while (std::getline(placement, rank, '/')) {
        for (char& c : rank)
            c = std::isupper(c) ? char(std::tolower(c)) : char(std::toupper(c));
        ranks.push_back(rank);
    }
    std::reverse(ranks.begin(), ranks.end());
    std::string out;
    for (size_t i = 0; i < ranks.size(); i++)
        out += (i ? "/" : "") + ranks[i];
    std::string castling;
    for (char c : std::string("KQkq")) {
        char mirrored = std::isupper(c) ? char(std::tolower(c)) : char(std::toupper(c));
        if (f[2].find(mirrored) != std::string::npos)
            castling += c;
    }
    std::string ep = f[3] == "-" ? "-" : std::string(1, f[3][0]) + (f[3][1] == '3' ? "6" : "3");
    return out + (f[1] == "w" ? " b " : " w ") + (castling.empty() ? "-" : castling) + " " + ep;
}

// Board mirrored left to right.
std::string file_mirror(const std::string& fen)
{
    std::vector<std::string> f = fields_of(fen);
    std::stringstream placement(f[0]);
    std::string rank, out;
    while (std::getline(placement, rank, '/')) {
        std::reverse(rank.begin(), rank.end());
        out += (out.empty() ? "" : "/") + rank;
    }
    std::string ep = f[3] == "-" ? "-" : std::string(1, char('h' - (f[3][0] - 'a'))) + f[3][1];
    return out + " " + f[1] + " - " + ep;
}

int eval_of(Game* g, EvalCaches* c, const std::string& fen)
{
    set_test_position(g, fen);
    return evaluate(&g->pos, c, g->pos.side, 0, 0, nullptr);
}

} // namespace

// An asymmetric term is a bug: a position and its colour-flipped twin must
// evaluate alike from the side to move, and so must a position without
// castling rights and its left-right mirror.
TEST(EvalSymmetry, ColourFlipAndMirror)
{
    Game* g = new_test_game();
    auto c = std::make_unique<EvalCaches>();
    init_evaluation();
    init_eval_params(0);
    std::vector<std::string> fens;
    for (const PerftCase& c : load_perft_cases())
        fens.push_back(c.fen);
    for (const std::string& f : load_opening_fens(10000))
        fens.push_back(f);
    int mirrored = 0;
    for (const std::string& fen : fens) {
        int v = eval_of(g, c.get(), fen);
        ASSERT_EQ(v, eval_of(g, c.get(), colour_flip(fen))) << fen << " / " << colour_flip(fen);
        if (fields_of(fen)[2] == "-") {
            ASSERT_EQ(v, eval_of(g, c.get(), file_mirror(fen))) << fen << " / " << file_mirror(fen);
            mirrored++;
        }
    }
    EXPECT_GT(mirrored, 20);
    free_test_game(g);
}
