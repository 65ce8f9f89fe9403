// Shared test fixtures: engine tables set up once, positions from the data files.
#pragma once

#include "search/search_thread.h"

#include <cstdint>
#include <string>
#include <vector>

struct PerftCase {
    std::string fen;
    std::vector<uint64_t> counts; // counts[d - 1] for depth d
};

// Keys made and a fresh record; set_position not yet called.
SearchThread* new_test_thread();
void free_test_thread(SearchThread* t);

// A position with its own history, for board and evaluation tests.
Game* new_test_game();
void free_test_game(Game* g);

// Puts the front end's game, and the search root, on the start position.
void reset_game_to_start();

// Sets the position, failing the test on an invalid FEN.
void set_test_position(Position* pos, const std::string& fen);
inline void set_test_position(SearchThread* t, const std::string& fen)
{
    set_test_position(&t->pos, fen);
}
inline void set_test_position(Game* g, const std::string& fen)
{
    set_test_position(&g->pos, fen);
}

// The positions and counts of a perft file of the shared data.
std::vector<PerftCase> load_perft_cases(const std::string& file = "perft.epd");
// The perft positions' FENs, then the first `openings` match openings.
std::vector<std::string> load_test_fens(size_t openings);
