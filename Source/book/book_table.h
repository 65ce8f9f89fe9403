// Win, loss and draw counts per position and move while a book is built.
#pragma once

#include "board/types.h"

#include <cstddef>

// One position-and-move pair, allocated zeroed, never freed singly.
struct BookNode {
    uint64_t key;    // book key of the position before the move
    uint32_t wins;   // games the side that played the move won
    uint32_t losses; // games it lost
    int32_t draws;
    Move move;
    uint16_t unused;
};
static_assert(sizeof(BookNode) == 24, "book node layout");

// A place in the index: the node's number and more bits of its hash, so
// that a lookup reads a node only when it is very likely the one.
struct BookSlot {
    uint32_t node; // 0 for an empty place
    uint32_t check;
};

// Nodes are numbered from 1 in the order they were created, which for the
// moves of one position is the order in which the moves were first seen.
// They live in fixed blocks, so that growing never copies them and never
// needs twice their memory; an open-addressed index over (key, move) finds
// a node without looking at others.
struct BookTable {
    BookNode** blocks;
    int block_count;
    int block_capacity;
    uint32_t count; // nodes created
    BookSlot* slots;
    uint32_t slot_mask;
};

constexpr int BOOK_BLOCK_BITS = 16;

// 1 on success, 0 when memory ran out.
int book_table_init(BookTable* table);
void book_table_free(BookTable* table);

// One game's verdict on one move: outcome +1 won, -1 lost, 0 drawn, for
// the side that played it.
struct BookRecord {
    uint64_t key;
    Move move;
    int8_t outcome;
};

// Counts the records in order, as if one at a time. Returns 0 when memory
// ran out.
int book_table_record(BookTable* table, const BookRecord* records, int count);

inline BookNode* book_node(const BookTable* table, uint32_t number)
{
    uint32_t i = number - 1;
    return &table->blocks[i >> BOOK_BLOCK_BITS][i & ((1u << BOOK_BLOCK_BITS) - 1)];
}
