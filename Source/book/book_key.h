// The Polyglot hash of a position: the key under which book files store it.
#pragma once

#include "board/position.h"

// Computed from scratch; separate from the engine's own hashing keys, which
// no book file knows.
uint64_t book_key(const Position* pos);
