#include "support/test_positions.h"

#include "board/fen.h"
#include "board/zobrist.h"
#include "search/tt.h"
#include "support/engine_process.h"
#include "uci/game.h"
#include "uci/settings.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

SearchThread* new_test_thread()
{
    static bool keys = false;
    if (!keys) {
        init_zobrist();
        set_default_settings();
        tt_allocate(1);
        keys = true;
    }
    return new_search_thread();
}

void free_test_thread(SearchThread* t)
{
    free_search_thread(t);
}

namespace
{

void make_keys_once()
{
    static bool keys = false;
    if (!keys) {
        init_zobrist();
        keys = true;
    }
}

} // namespace

Game* new_test_game()
{
    make_keys_once();
    Game* g = new Game();
    game_init(g);
    return g;
}

void free_test_game(Game* g)
{
    delete g;
}

void reset_game_to_start()
{
    make_keys_once();
    set_game_position(START_FEN);
    set_root_position(game_position());
}

void set_test_position(Position* pos, const std::string& fen)
{
    set_position(pos, fen.c_str());
    const char* problem = position_problem(pos);
    ASSERT_EQ(problem, nullptr) << fen << ": " << problem;
}

std::vector<PerftCase> load_perft_cases(const std::string& file)
{
    std::vector<PerftCase> cases;
    std::ifstream in(data_path(file));
    std::string line;
    while (std::getline(in, line)) {
        size_t semi = line.find(';');
        if (semi == std::string::npos)
            continue;
        PerftCase c;
        c.fen = line.substr(0, semi);
        std::istringstream ops(line.substr(semi));
        std::string tag;
        uint64_t n;
        while (ops >> tag >> n)
            c.counts.push_back(n);
        cases.push_back(c);
    }
    return cases;
}

std::vector<std::string> load_opening_fens(size_t max_count)
{
    std::vector<std::string> fens;
    std::ifstream in(data_path("openings/noob_3moves_10k.epd"));
    std::string line;
    while (fens.size() < max_count && std::getline(in, line))
        if (line.size() > 10)
            fens.push_back(line);
    return fens;
}

std::vector<std::string> load_test_fens(size_t openings)
{
    std::vector<std::string> fens;
    for (const PerftCase& c : load_perft_cases())
        fens.push_back(c.fen);
    for (const std::string& f : load_opening_fens(openings))
        fens.push_back(f);
    return fens;
}
