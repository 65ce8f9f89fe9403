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

namespace
{

void make_keys_once()
{
    static bool keys = (init_zobrist(), true);
    (void)keys;
}

} // namespace

SearchThread* new_test_thread()
{
    static bool table = (make_keys_once(), set_default_settings(), tt_allocate(1), true);
    (void)table;
    return new_search_thread();
}

void free_test_thread(SearchThread* t)
{
    free_search_thread(t);
}

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
    for (std::string line; std::getline(in, line);) {
        size_t semi = line.find(';');
        if (semi == std::string::npos)
            continue;
        PerftCase c{line.substr(0, semi), {}};
        std::istringstream ops(line.substr(semi));
        std::string tag;
        for (uint64_t n; ops >> tag >> n;)
            c.counts.push_back(n);
        cases.push_back(c);
    }
    return cases;
}

static std::vector<std::string> load_opening_fens(size_t max_count)
{
    std::vector<std::string> fens;
    std::ifstream in(data_path("openings/noob_3moves_10k.epd"));
    for (std::string line; fens.size() < max_count && std::getline(in, line);)
        if (line.size() > 10)
            fens.push_back(line);
    return fens;
}

std::vector<std::string> load_test_fens(size_t openings)
{
    std::vector<std::string> fens = load_opening_fens(openings);
    for (const PerftCase& c : load_perft_cases())
        fens.insert(fens.begin(), c.fen);
    return fens;
}
