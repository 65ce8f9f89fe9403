#include "eval/eval_cache.h"

#include "eval/params.h"

#include <cstring>

void clear_eval_caches(EvalCaches* c)
{
    std::memset(c->pawn_hash, 0, sizeof c->pawn_hash);
    std::memset(c->eval_hash, 0, sizeof c->eval_hash);
    c->generation = param_generation;
}
