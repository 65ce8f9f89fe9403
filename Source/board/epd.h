// Taking an EPD line apart into its position and its known operations.
#pragma once

constexpr int EPD_FIELD_SIZE = 256;

struct EpdFields {
    char fen[EPD_FIELD_SIZE];
    char bm[EPD_FIELD_SIZE];
    char am[EPD_FIELD_SIZE];
    char id[EPD_FIELD_SIZE];
    char ce[EPD_FIELD_SIZE];
    char c0[EPD_FIELD_SIZE];
};

// Copies the four FEN fields and the operands of bm, am, id, ce and c0 into
// `out`; fields whose operation is absent are left as they were. Blanks
// inside an operand are dropped, quotes kept; an operation counts only when
// a ";" ends it. Counters after the FEN fields are skipped.
void split_epd(const char* line, EpdFields* out);
