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

namespace
{

Game root_game;

} // namespace

void set_root_position(const Position* game)
{
    game_init(&root_game);
    copy_position(&root_game.pos, root_game.undo, game);
}

const Position* root_position()
{
    return &root_game.pos;
}

void copy_root_into(SearchThread* t)
{
    copy_position(&t->pos, t->undo, &root_game.pos);
    t->pos.search_ply = ROOT_PLY;
    t->pos.last_move = 0;
}
