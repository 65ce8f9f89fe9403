#include "eval/eval_cache.h"

#include "search/search_thread.h"
#include "search/threads.h"

#include <cstring>

void clear_eval_caches(SearchThread* t)
{
    std::memset(t->pawn_hash, 0, sizeof t->pawn_hash);
    std::memset(t->eval_hash, 0, sizeof t->eval_hash);
}

void clear_all_eval_caches()
{
    for (int i = 0; i < worker_count(); i++)
        clear_eval_caches(worker(i));
    if (game_thread)
        clear_eval_caches(game_thread);
}
