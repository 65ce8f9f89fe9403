// Score conventions of the search.
#pragma once

#include "board/types.h"

constexpr int INFINITE_SCORE = 10001;
constexpr int MATE = 10000;      // a side mated at ply p scores p - MATE
constexpr int MATE_BOUND = 9599; // scores this large are mate scores
// Exact table scores beyond this end a node of enough draft from the root's
// eighth ply on, PV nodes included; no ProbCut above it.
constexpr int NEAR_MATE = 9000;
// The table makes scores relative to the node on store from these bounds on
// (below -9699, above 9698), though it converts them back from MATE_BOUND on.
constexpr int STORE_MATE = 9699;
constexpr int STORE_MATE_LOW = 9698;
constexpr int TB_WIN = 9800; // tablebase wins score TB_WIN - ply
// Deeper nodes return their evaluation. A node one ply below it still writes
// its per-ply record and the end of its line: both must fit MAX_PLY.
constexpr int MAX_SEARCH_PLY = MAX_PLY - 5;
static_assert(MAX_SEARCH_PLY + 2 <= MAX_PLY, "the deepest node's line must fit the buffers");
constexpr int NO_SCORE = -10001;

// Worth of a piece type for "worth more than" tests: P N B R Q K.
constexpr int PIECE_WORTH[8] = {0, 1, 3, 3, 5, 10, 99, 0};

// Ordering value of a capture by the captured type (none, P, N, B, R, Q);
// the mover's type is subtracted from it.
constexpr int MVV[8] = {210, 220, 230, 230, 240, 250, 0, 0};

// Exchange value below which a move by a more valuable man is pruned, or
// reduced one ply more.
constexpr int BAD_SEE = -70;
