#include "board/epd.h"

#include <cstdint>
#include <cstring>

namespace
{

void copy_bounded(char* dest, const char* src, size_t len)
{
    if (len >= EPD_FIELD_SIZE)
        len = EPD_FIELD_SIZE - 1;
    std::memcpy(dest, src, len);
    dest[len] = 0;
}

// The characters that can end a FEN field: blank, line end, end of text.
struct FenStops {
    bool at[256] = {};
    constexpr FenStops() { at[0] = at[uint8_t(' ')] = at[uint8_t('\n')] = at[uint8_t('\r')] = true; }
};
constexpr FenStops FEN_STOP;

// Where the operand of a two-letter operation goes, if it is kept.
char* operand_slot(const char* op, EpdFields* out)
{
    switch (uint8_t(op[0]) << 8 | uint8_t(op[1])) {
    case 'b' << 8 | 'm':
        return out->bm;
    case 'a' << 8 | 'm':
        return out->am;
    case 'i' << 8 | 'd':
        return out->id;
    case 'c' << 8 | 'e':
        return out->ce;
    case 'c' << 8 | '0':
        return out->c0;
    }
    return nullptr;
}

} // namespace

void split_epd(const char* line, EpdFields* out)
{
    // The four FEN fields end at their fourth blank or with the line.
    const char* p = line;
    for (int blanks = 0;; p++) {
        while (!FEN_STOP.at[uint8_t(*p)])
            p++;
        if (*p != ' ' || ++blanks == 4)
            break;
    }
    copy_bounded(out->fen, line, size_t(p - line));
    while (*p == ' ' || (*p >= '0' && *p <= '9'))
        p++;

    while (*p) {
        while (*p == ' ')
            p++;
        const char* op = p;
        while (*p && *p != ' ' && *p != ';')
            p++;
        char* dest = nullptr;
        if (p - op == 2)
            dest = operand_slot(op, out);
        // Operands of operations not kept are only passed over: tuning files
        // carry one or two of those on each of millions of lines.
        const char* end = p;
        while (*end && *end != ';')
            end++;
        if (*end != ';')
            break; // an operation without its ";" is not taken
        if (dest) {
            size_t n = 0;
            for (; p < end; p++)
                if (*p != ' ' && *p != '\n' && *p != '\r' && n < EPD_FIELD_SIZE - 1)
                    dest[n++] = *p;
            dest[n] = 0;
        }
        p = end + 1;
    }
}
