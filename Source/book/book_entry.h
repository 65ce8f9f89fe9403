// One entry of a Polyglot book file and the two move encodings.
#pragma once

#include "board/types.h"

#include <cstdint>

// On disk: 16 bytes, every field big-endian, entries in ascending key order
// and the entries of one position adjacent.
struct BookEntry {
    uint64_t key;    // Polyglot key of the position (see book_key)
    uint16_t move;   // bits 0-5 to, 6-11 from, 12-14 promotion: 1 N, 2 B, 3 R, 4 Q
    uint16_t weight; // how often the move was played, or a score
    uint32_t learn;  // read and ignored
};

constexpr int BOOK_ENTRY_SIZE = 16;

void decode_book_entry(const unsigned char* bytes, BookEntry* entry);
void encode_book_entry(const BookEntry* entry, unsigned char* bytes);

// Reads entry `index` of the open book file `fd`; returns nonzero at the end
// of the file (fewer than 16 bytes there), with `entry` untouched.
int read_book_entry(int fd, int64_t index, BookEntry* entry);

// Book move to engine move. Castling is stored as the king taking its own
// rook and comes back as the king's two-square move; the conversion looks
// at the squares only, so it applies whatever man stands on e1 or e8.
Move book_move_to_move(uint16_t book_move);

// The reverse, for writing books: e1g1 becomes e1h1 and so on, again by squares.
uint16_t move_to_book_move(Move move);
