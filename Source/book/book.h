// Opening books in the Polyglot format.
#pragma once

#include "board/position.h"

// A move for the position from the book file, or 0.
Move book_probe(const Position* pos, const char* file);
