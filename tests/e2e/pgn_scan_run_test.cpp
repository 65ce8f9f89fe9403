// -scan_pgn1 .. 4 through the real binary over the first 30 of the engine
// games, checked against a reading of the same games made here.
#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

constexpr int NONE = -30000;

struct ScannedPly {
    std::string san;
    int eval = NONE;
    std::string fen; // before the move
    int fifty = 0;
    bool in_check = false;
    bool rook_ending = false;
};

struct ScannedGame {
    double white_score = 0.5;      // 1, 0 or 0.5 by the Result tag
    int move_count = 0;            // move texts in the game
    std::vector<ScannedPly> plies; // up to the first move the board cannot read
};

int comment_value(const std::string& comment)
{
    if (comment.find("book") != std::string::npos)
        return NONE;
    size_t slash = comment.find('/');
    size_t start = comment.rfind(' ', slash);
    std::string token = comment.substr(start == std::string::npos ? 0 : start + 1,
                                       slash - (start == std::string::npos ? 0 : start + 1));
    if (token.find('M') != std::string::npos)
        return token[0] == '-' ? -9000 : 9000;
    return int(std::lround(std::stod(token) * 100));
}

bool one_rook_each_and_a_pawn(const Position* pos)
{
    for (int s = 0; s < 2; s++)
        if (popcount(pos->pieces[s][ROOK]) != 1 || pos->pieces[s][KNIGHT] || pos->pieces[s][BISHOP]
            || pos->pieces[s][QUEEN])
            return false;
    return popcount(all_pawns(pos)) == 1;
}

std::vector<ScannedGame> read_games(const std::string& path)
{
    std::vector<ScannedGame> games;
    std::ifstream in(path);
    std::string line, text;
    auto finish = [&]() {
        if (games.empty())
            return;
        std::vector<std::string> sans;
        std::vector<int> evals;
        for (size_t i = 0; i < text.size();) {
            if (std::isspace(static_cast<unsigned char>(text[i]))) {
                i++;
            } else if (text[i] == '{') {
                size_t close = text.find('}', i);
                if (!evals.empty())
                    evals.back() = comment_value(text.substr(i + 1, close - i - 1));
                i = close + 1;
            } else {
                size_t end = text.find_first_of(" \n{", i);
                std::string token = text.substr(i, end - i);
                if (std::isalpha(static_cast<unsigned char>(token[0]))) {
                    sans.push_back(token);
                    evals.push_back(NONE);
                }
                i = end;
            }
        }
        games.back().move_count = int(sans.size());
        Game* g = new_test_game();
        set_test_position(g, START_FEN);
        for (size_t i = 0; i < sans.size(); i++) {
            ScannedPly p;
            p.san = sans[i];
            p.eval = evals[i];
            char fen[128];
            write_fen(&g->pos, fen);
            p.fen = fen;
            p.fifty = g->pos.fifty;
            p.in_check = in_check(&g->pos, g->pos.side);
            p.rook_ending = one_rook_each_and_a_pawn(&g->pos);
            Move m = 0;
            if (!parse_move(&g->pos, sans[i].c_str(), &m))
                break; // "Qh3#": the board's reader knows "+" only
            make_move(&g->pos, m);
            games.back().plies.push_back(p);
        }
        free_test_game(g);
        text.clear();
    };
    while (std::getline(in, line)) {
        if (line.rfind("[Event ", 0) == 0) {
            finish();
            games.emplace_back();
        } else if (line.rfind("[Result ", 0) == 0) {
            games.back().white_score = line.find("1-0") != std::string::npos   ? 1.0
                                       : line.find("0-1") != std::string::npos ? 0.0
                                                                               : 0.5;
        } else if (line[0] != '[') {
            text += line + "\n";
        }
    }
    finish();
    return games;
}

// The first `count` games of the engine games file, written to `path`.
void copy_games(int count, const std::string& path)
{
    std::ifstream in(data_path("pgn/engine-games-evals.pgn"));
    std::ofstream out(path);
    int events = 0;
    for (std::string l; std::getline(in, l);) {
        if (l.rfind("[Event ", 0) == 0 && ++events > count)
            break;
        out << l << "\n";
    }
}

std::string label(double v)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0.1f", v);
    return text;
}

struct Slice {
    std::string dir = make_temp_dir();
    std::vector<ScannedGame> games;
    Slice()
    {
        copy_games(30, dir + "/games.pgn");
        games = read_games(dir + "/games.pgn");
    }
    ~Slice() { std::filesystem::remove_all(dir); }
    ToolRun scan(int variant) { return run_tool({"-scan_pgn" + std::to_string(variant), "games.pgn"}, dir); }
};

std::string summary(const ToolRun& run, size_t positions)
{
    std::vector<std::string> l = starting_with(run.lines, "games= ");
    EXPECT_EQ(l.size(), 1u);
    EXPECT_EQ(l.empty() ? "" : l[0], "games= 30, positions= " + std::to_string(positions));
    return l.empty() ? "" : l[0];
}

} // namespace

TEST(PgnScanRun, TrainingPositionsOfThirtyEngineGames)
{
    Slice s;
    ASSERT_EQ(s.games.size(), 30u);
    ToolRun run = s.scan(2);
    ASSERT_EQ(run.status, 0);
    std::vector<std::string> expected;
    for (const ScannedGame& g : s.games) {
        // The last six plies are left out by the game's length, read or not.
        int n = g.move_count;
        for (int i = 16; i <= n - 7 && i <= 220 && i < int(g.plies.size()); i++) {
            const ScannedPly& p = g.plies[size_t(i)];
            if (p.fifty > 20 || std::abs(p.eval) >= 5000 || p.in_check)
                continue;
            double gr = i % 2 == 0 ? g.white_score : 1 - g.white_score;
            expected.push_back(p.fen + " bm " + p.san + "; ce " + std::to_string(p.eval) + "; gr " + label(gr) + ";");
        }
    }
    ASSERT_GT(expected.size(), 1000u);
    std::vector<std::string> written = read_lines(s.dir + "/tmp.epd");
    ASSERT_EQ(written.size(), expected.size() + 1);
    EXPECT_EQ(written.back(), "");
    written.pop_back();
    // Line by line: the position, the move played there, the evaluation its
    // comment gave and the result from the side to move.
    for (size_t i = 0; i < expected.size(); i++)
        ASSERT_EQ(written[i], expected[i]) << "line " << i + 1;
    summary(run, expected.size());
    EXPECT_TRUE(read_lines(s.dir + "/tmpX.epd").empty());
    EXPECT_FALSE(std::filesystem::exists(s.dir + "/tmp.pgn"));
}

TEST(PgnScanRun, RookEndingsOpeningsAndListing)
{
    Slice s;
    ToolRun run = s.scan(4);
    ASSERT_EQ(run.status, 0);
    std::vector<std::string> endings;
    for (const ScannedGame& g : s.games)
        for (size_t i = 0; i < g.plies.size(); i++) {
            const ScannedPly& p = g.plies[i];
            if (!p.rook_ending)
                continue;
            double own = i % 2 == 0 ? g.white_score : 1 - g.white_score;
            char tune[16];
            std::snprintf(tune, sizeof tune, "%0.5f", own);
            endings.push_back(p.fen + " bm " + p.san + "; ce " + std::to_string(p.eval) + "; tune " + tune + ";");
        }
    ASSERT_FALSE(endings.empty());
    endings.push_back("");
    EXPECT_EQ(read_lines(s.dir + "/tmp.epd"), endings);
    summary(run, endings.size() - 1);

    // Openings: positions not in check until the first evaluation beyond
    // 500 either way, where a move without one (a book move) counts as
    // beyond. These games open with book moves: one position each.
    run = s.scan(3);
    ASSERT_EQ(run.status, 0);
    std::vector<std::string> openings;
    for (const ScannedGame& g : s.games)
        for (size_t i = 0; i < g.plies.size() && i < 201; i++) {
            const ScannedPly& p = g.plies[i];
            if (!p.in_check)
                openings.push_back(p.fen + " bm " + p.san + "; ce " + std::to_string(p.eval) + ";");
            if (std::abs(p.eval) > 500)
                break;
        }
    EXPECT_EQ(openings.size(), 30u);
    openings.push_back("");
    EXPECT_EQ(read_lines(s.dir + "/tmp.epd"), openings);
    summary(run, openings.size() - 1);

    // The listing: every tag line, a game number after each Round tag, one
    // line per ply read, an empty line after each game.
    run = s.scan(1);
    ASSERT_EQ(run.status, 0);
    std::vector<std::string> listing = read_lines(s.dir + "/tmp.pgn");
    std::vector<std::string> refutations = read_lines(s.dir + "/tmpX.epd");
    summary(run, refutations.size());
    size_t plies = 0;
    for (const ScannedGame& g : s.games)
        plies += g.plies.size();
    size_t tags = 0, moves = 0, empty = 0, marks = 0;
    for (const std::string& l : listing) {
        if (l.empty())
            empty++;
        else if (l[0] == '[')
            tags++;
        else
            moves++;
        marks += l.find(" ! ") != std::string::npos;
    }
    EXPECT_EQ(moves, plies);
    EXPECT_EQ(empty, 31u); // one per game and the final newline
    EXPECT_EQ(starting_with(listing, "[Tag \"game_").size(), 30u);
    EXPECT_EQ(starting_with(listing, "[Tag \"game_30\"]").size(), 1u);
    size_t source_tags = 0;
    for (const std::string& l : read_lines(s.dir + "/games.pgn"))
        source_tags += l.rfind("[", 0) == 0 && l.rfind("[%", 0) != 0;
    EXPECT_EQ(tags, source_tags + 30); // each game's tags and its number
    EXPECT_EQ(marks, refutations.size());
    // Each refutation is a legal move in its position.
    Game* g = new_test_game();
    for (const std::string& r : refutations) {
        size_t bm = r.find(" bm ");
        ASSERT_NE(bm, std::string::npos) << r;
        set_test_position(g, r.substr(0, bm));
        Move m = 0;
        EXPECT_EQ(parse_move(&g->pos, r.substr(bm + 4, r.size() - bm - 5).c_str(), &m), 1) << r;
    }
    free_test_game(g);
}

TEST(PgnScanRun, GamesAreCountedAndOddInputSurvives)
{
    std::string dir = make_temp_dir();
    {
        std::ofstream pgn(dir + "/odd.pgn");
        // 250 short games: "game 100" and "game 200".
        for (int i = 0; i < 250; i++)
            pgn << "[Event \"e\"]\n[Result \"1-0\"]\n\n1. e4 {+0.10/3} e5 {-0.10/3} 1-0\n\n";
        // A game too long for the move list, with knights walking to and fro.
        pgn << "[Event \"long\"]\n\n";
        for (int i = 0; i < 700; i++)
            pgn << "Nf3 {+0.10/3} Nf6 {+0.10/3} Ng1 {+0.10/3} Ng8 {+0.10/3}\n";
        // Huge numbers, a word longer than any move, unbalanced braces,
        // bytes of every kind, an overlong line, a comment left open.
        pgn << "[Event \"junk\"]\n[Result \"0-1\"]\n\n1. e4 {+99999999999999999999.5/9} e5 {[%eval 9999999999999]}\n"
            << "Nf3abcdefghijklmnopqrstuvwxyz {-M} }}} {{ Nc6 } Bb5 {/}\n"
            << std::string(5000, 'Q') << "\n";
        for (int c = 1; c < 256; c++)
            pgn << char(c);
        pgn << "\n{ never closed\n";
    }
    for (int variant = 1; variant <= 4; variant++) {
        ToolRun run = run_tool({"-scan_pgn" + std::to_string(variant), "odd.pgn"}, dir);
        ASSERT_EQ(run.status, 0) << variant;
        EXPECT_EQ(starting_with(run.lines, "game ").size(), 2u);
        EXPECT_EQ(starting_with(run.lines, "game 200").size(), 1u);
        std::vector<std::string> end = starting_with(run.lines, "games= 252, positions= ");
        EXPECT_EQ(end.size(), 1u) << variant;
    }
    // A bare -scan_pgn takes its file but starts no scan (the engine starts instead).
    EngineProcess e({"-scan_pgn", "odd.pgn"}, dir);
    EXPECT_NE(e.ask("uci", "uciok"), "");
    EXPECT_EQ(e.quit(), 0);
    // An unreadable file ends the scan silently.
    ToolRun none = run_tool({"-scan_pgn2", "missing.pgn"}, dir);
    EXPECT_EQ(none.status, 0);
    EXPECT_TRUE(starting_with(none.lines, "games=").empty());
    std::filesystem::remove_all(dir);
}
