// The principal search: the node routine, its move loop and ProbCut. The
// quiescence search shares the node routine: every child enters search_node.
#pragma once

#include "board/types.h"

struct SearchThread;

enum NodeType { NODE_PV = 0, NODE_CUT = 1, NODE_ALL = -1 };

// Alpha-beta on the thread's position. The move loop is fail-soft (the best
// score found is returned, outside the window too); the table, null-move and
// pruning cutoffs return alpha or beta. `pv` is the caller's
// principal variation array, indexed by ply and ended by 0. Returns 0 at once
// when the stop flag is set.
int search_node(SearchThread* t, int side, int ply, int depth, int alpha, int beta, int node_type, Move* pv);

int search_moves(SearchThread* t, int side, int ply, int depth, int alpha, int beta, bool in_check, int node_type,
                 Move* pv);

// True when a capture, searched at reduced depth against a raised beta,
// proves that the node fails high.
bool probcut(SearchThread* t, int ply, int depth, int beta);

int quiesce(SearchThread* t, int side, int ply, int depth, int alpha, int beta, int node_type, Move* pv);

// Class bits of a move: 1 capture, 2 check, and for pawns 16 promotion,
// 8 push to the seventh rank, 32 passed pawn to the fifth or sixth or beyond.
// A move is quiet when its class & 63 is 0.
struct CheckInfo;
int move_class(const SearchThread* t, Move move, int piece, int captured, const CheckInfo& ci);

