// Choosing a move from a Polyglot book file.
#pragma once

#include "board/position.h"
#include "book/book_entry.h"

// Only this many entries of one position are read.
constexpr int MAX_BOOK_MOVES = 128;

// What the front end decides about a probe.
struct BookOptions {
    int variety;          // 0..100; 25 picks in proportion to the weights, more flattens, less sharpens
    bool quiet;           // no listing of the candidates
    bool console_listing; // a line per candidate with its share, for a person; else one info string line
};

// The weighted random choice among the entries of one position.
struct BookRoulette {
    int total;                    // sum of the weights
    int adjusted[MAX_BOOK_MOVES]; // weights after the variety bonus, scaled to 10000 parts of total
    int sum;                      // sum of the adjusted weights
    int selected;                 // index of the chosen entry
};

// A draw 0..999 from rand(), scrambled as the book choice always was.
uint32_t book_draw();

// Weighs `count` (1..MAX_BOOK_MOVES) entries and picks one with the draw.
// Entries of weight 0 are never picked unless nothing else is: the first
// entry is the fallback.
void spin_book_roulette(const BookEntry* entries, int count, int variety, uint32_t draw, BookRoulette* out);

// The entries of the position in `file`, in file order; returns how many
// (at most MAX_BOOK_MOVES), 0 when the file is missing, unreadable or does
// not hold the position. The file is opened and closed on every call, so a
// book replaced on disk is read afresh.
int read_book_moves(const char* file, uint64_t key, BookEntry* entries);

// A move for the position from the book file, or 0. The candidates are
// listed (an "info string" line for a GUI, one line each on the console)
// unless `options.quiet`. A move that cannot be played here (a key
// collision or a damaged book) gives 0.
Move book_probe(const Position* pos, const char* file, const BookOptions& options);
