#include "search/search_thread.h"

#include <cstdlib>
#include <cstring>
#include <new>

SearchThread* new_search_thread()
{
    void* memory = std::calloc(1, sizeof(SearchThread));
    if (!memory)
        return nullptr;
    // The atomics inside need no construction beyond zeroed memory, but make
    // the record's lifetime explicit.
    SearchThread* t = new (memory) SearchThread();
    attach_position(t);
    return t;
}

void free_search_thread(SearchThread* t)
{
    if (!t)
        return;
    t->~SearchThread();
    std::free(t);
}

void copy_game_into(SearchThread* t)
{
    const SearchThread* g = game_thread;
    t->pos = g->pos;
    t->pos.thread = t;
    std::memcpy(t->undo, g->undo, sizeof(UndoRecord) * size_t(g->game_ply + 1));
    t->game_ply = g->game_ply;
    t->search_ply = ROOT_PLY;
    t->last_move = 0;
}
