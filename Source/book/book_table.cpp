#include "book/book_table.h"

#include <cstdlib>
#include <cstring>

namespace
{

constexpr uint32_t BLOCK_NODES = 1u << BOOK_BLOCK_BITS;
constexpr uint32_t FIRST_SLOTS = 1u << 16;
constexpr uint32_t MAX_SLOTS = 1u << 31;

// Keys are random already; the move is mixed in so that the moves of one
// position spread over the index. The low bits choose the place, the high
// bits are the check.
uint64_t hash_of(uint64_t key, Move move)
{
    return key ^ (uint64_t(move) * 0x9E3779B97F4A7C15ULL);
}

void place(BookSlot* slots, uint32_t mask, uint64_t h, uint32_t number)
{
    uint32_t i = uint32_t(h) & mask;
    while (slots[i].node)
        i = (i + 1) & mask;
    slots[i] = {number, uint32_t(h >> 32)};
}

// Doubles the index when it is three quarters full: linear probing stays
// short below that.
int grow_slots(BookTable* table)
{
    uint32_t size = (table->slot_mask + 1) * 2;
    BookSlot* slots = static_cast<BookSlot*>(std::calloc(size, sizeof(BookSlot)));
    if (!slots)
        return 0;
    std::free(table->slots);
    table->slots = slots;
    table->slot_mask = size - 1;
    for (uint32_t n = 1; n <= table->count; n++) {
        const BookNode* node = book_node(table, n);
        place(slots, table->slot_mask, hash_of(node->key, node->move), n);
    }
    return 1;
}

BookNode* new_node(BookTable* table)
{
    uint32_t i = table->count;
    if ((i & (BLOCK_NODES - 1)) == 0) {
        if (table->block_count == table->block_capacity) {
            int capacity = table->block_capacity ? table->block_capacity * 2 : 64;
            void* blocks = std::realloc(table->blocks, sizeof(BookNode*) * size_t(capacity));
            if (!blocks)
                return nullptr;
            table->blocks = static_cast<BookNode**>(blocks);
            table->block_capacity = capacity;
        }
        BookNode* block = static_cast<BookNode*>(std::calloc(BLOCK_NODES, sizeof(BookNode)));
        if (!block)
            return nullptr;
        table->blocks[table->block_count++] = block;
    }
    table->count++;
    return book_node(table, table->count);
}

void count_outcome(BookNode* node, int outcome)
{
    if (outcome > 0)
        node->wins++;
    else if (outcome < 0)
        node->losses++;
    else
        node->draws++;
}

int record_one(BookTable* table, const BookRecord& r)
{
    uint64_t h = hash_of(r.key, r.move);
    uint32_t check = uint32_t(h >> 32);
    uint32_t i = uint32_t(h) & table->slot_mask;
    for (; table->slots[i].node; i = (i + 1) & table->slot_mask) {
        if (table->slots[i].check != check)
            continue;
        BookNode* node = book_node(table, table->slots[i].node);
        if (node->key == r.key && node->move == r.move) {
            count_outcome(node, r.outcome);
            return 1;
        }
    }
    // The index must keep an empty place, and node numbers must fit it.
    if (uint64_t(table->count + 1) * 4 > uint64_t(table->slot_mask + 1) * 3) {
        if (table->slot_mask + 1 >= MAX_SLOTS || !grow_slots(table))
            return 0;
        return record_one(table, r);
    }
    BookNode* node = new_node(table);
    if (!node)
        return 0;
    node->key = r.key;
    node->move = r.move;
    count_outcome(node, r.outcome);
    table->slots[i] = {table->count, check};
    return 1;
}

} // namespace

int book_table_init(BookTable* table)
{
    std::memset(table, 0, sizeof *table);
    table->slots = static_cast<BookSlot*>(std::calloc(FIRST_SLOTS, sizeof(BookSlot)));
    table->slot_mask = FIRST_SLOTS - 1;
    return table->slots != nullptr;
}

void book_table_free(BookTable* table)
{
    for (int b = 0; b < table->block_count; b++)
        std::free(table->blocks[b]);
    std::free(table->blocks);
    std::free(table->slots);
    std::memset(table, 0, sizeof *table);
}

int book_table_record(BookTable* table, const BookRecord* records, int count)
{
    // The index and the nodes are far larger than the caches and every
    // lookup lands somewhere new. Asking for the lines of a whole batch
    // first lets the memory system fetch them side by side instead of one
    // miss after another; the counting itself then runs in order.
    for (int i = 0; i < count; i++)
        __builtin_prefetch(&table->slots[uint32_t(hash_of(records[i].key, records[i].move)) & table->slot_mask]);
    for (int i = 0; i < count; i++) {
        uint64_t h = hash_of(records[i].key, records[i].move);
        const BookSlot& s = table->slots[uint32_t(h) & table->slot_mask];
        if (s.node && s.check == uint32_t(h >> 32))
            __builtin_prefetch(book_node(table, s.node));
    }
    for (int i = 0; i < count; i++)
        if (!record_one(table, records[i]))
            return 0;
    return 1;
}
