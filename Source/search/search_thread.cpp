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
    copy_position(&t->pos, t->undo, &game_thread->pos);
    t->pos.search_ply = ROOT_PLY;
    t->pos.last_move = 0;
}
