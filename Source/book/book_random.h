// The fixed random numbers of the Polyglot book key.
#pragma once

#include <cstdint>

constexpr int BOOK_RANDOM_COUNT = 781;
constexpr int BOOK_RANDOM_CASTLING =
    768; // four entries: white king side, white queen side, black king side, black queen side
constexpr int BOOK_RANDOM_EN_PASSANT = 772; // eight entries, by file
constexpr int BOOK_RANDOM_WHITE_TO_MOVE = 780;

extern const uint64_t BOOK_RANDOM[BOOK_RANDOM_COUNT];
