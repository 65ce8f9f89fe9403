#include "board/epd.h"

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

} // namespace

void split_epd(const char* line, EpdFields* out)
{
    const char* p = line;
    int blanks = 0;
    while (*p && *p != '\n' && *p != '\r') {
        if (*p == ' ' && ++blanks == 4)
            break;
        p++;
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
        size_t op_len = size_t(p - op);
        char operand[EPD_FIELD_SIZE];
        size_t n = 0;
        while (*p && *p != ';') {
            if (*p != ' ' && *p != '\n' && *p != '\r' && n < sizeof operand - 1)
                operand[n++] = *p;
            p++;
        }
        operand[n] = 0;
        if (*p != ';')
            break; // an operation without its ";" is not taken
        p++;
        char* dest = nullptr;
        if (op_len == 2 && !std::strncmp(op, "bm", 2))
            dest = out->bm;
        else if (op_len == 2 && !std::strncmp(op, "am", 2))
            dest = out->am;
        else if (op_len == 2 && !std::strncmp(op, "id", 2))
            dest = out->id;
        else if (op_len == 2 && !std::strncmp(op, "ce", 2))
            dest = out->ce;
        else if (op_len == 2 && !std::strncmp(op, "c0", 2))
            dest = out->c0;
        if (dest)
            copy_bounded(dest, operand, n);
    }
}
