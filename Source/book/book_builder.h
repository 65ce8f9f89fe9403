// Building a Polyglot book from PGN games.
#pragma once

constexpr const char* BOOK_BUILD_OUTPUT = "tmp_book.bin";

// -mkbook: replays the first 36 plies or so of every game with a result and
// writes the moves that scored well to "tmp_book.bin" in the working
// directory. Reports on standard output.
void make_book(const char* pgn_file);

// The same into `book_file`. Returns 1 when the book was written, 0 when the
// PGN file could not be opened, memory ran out or the book could not be
// created.
int build_book(const char* pgn_file, const char* book_file);
