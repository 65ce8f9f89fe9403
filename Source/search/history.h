// History, killer, counter-move and follow-up tables: indexing and updates.
#pragma once

#include "search/search_thread.h"

inline int history_index(int prev_type, int piece, int to)
{
    return ((prev_type * 16 + piece) * 64) + to;
}

// The move made `back` plies above `ply` (1 = the move that led here), or
// nullptr when there was none or it was a null move.
const MoveEntry* previous_move(const SearchThread* t, int ply, int back);

// A searched quiet move: history moves towards 16384 when it raised alpha
// and towards 0 otherwise; a good move also becomes a killer, a counter move
// and a follow-up move.
void update_quiet_stats(SearchThread* t, int ply, const MoveEntry* e, bool good, int depth, bool in_check);

// Fresh tables for a new search.
void clear_history(SearchThread* t);
