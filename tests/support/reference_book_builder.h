// The book builder written the plain way, straight from its description:
// fgets lines, sorted chains of separately allocated nodes walked for every
// move, moves read by writing out the texts of every legal move, keys hashed
// from scratch. Slow, but with nothing clever in it to go wrong; the real
// builder must write the same bytes.
#pragma once

#include <string>

struct ReferenceBookCounts {
    int games;
    int moves;
};

// Writes the book to `book_file`; returns false when the PGN file cannot be read.
bool reference_build_book(const std::string& pgn_file, const std::string& book_file, ReferenceBookCounts* counts);
