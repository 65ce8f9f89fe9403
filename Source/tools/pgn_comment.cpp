#include "tools/pgn_comment.h"

#include <cstdlib>
#include <cstring>

namespace
{

// Stored evaluations are 16-bit and NO_EVAL is reserved.
constexpr long EVAL_LIMIT = 29999;
// Digits past this many add nothing but the risk of overflow.
constexpr int MAX_DIGITS = 9;
constexpr int MATE_EVAL = 9000;
constexpr int TOKEN_SIZE = 64;

int clamp_eval(long v)
{
    return int(v > EVAL_LIMIT ? EVAL_LIMIT : v < -EVAL_LIMIT ? -EVAL_LIMIT : v);
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

int pawns_to_centipawns(const char* text)
{
    const char* p = text;
    while (*p == ' ')
        p++;
    bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        p++;
    // Read digit by digit rather than through a double, so that "0.29"
    // gives 29 and not 28.999... truncated to 28.
    long whole = 0;
    for (int n = 0; is_digit(*p); p++)
        if (n++ < MAX_DIGITS)
            whole = whole * 10 + (*p - '0');
    long hundredths = 0;
    if (*p == '.') {
        p++;
        for (int n = 0; n < 2; n++) {
            hundredths *= 10;
            if (is_digit(*p))
                hundredths += *p++ - '0';
        }
    }
    long v = whole * 100 + hundredths;
    return clamp_eval(negative ? -v : v);
}

bool comment_eval(const char* text, bool white_moved, int16_t* eval)
{
    if (std::strstr(text, "book")) {
        *eval = NO_EVAL;
        return true;
    }
    if (const char* p = std::strstr(text, "eval ")) {
        // strtol stops at the comma (and at any other non-digit).
        long v = std::strtol(p + 5, nullptr, 10);
        int e = clamp_eval(v);
        *eval = int16_t(white_moved ? e : -e);
        return true;
    }
    const char* slash = std::strchr(text, '/');
    if (!slash)
        return false;
    const char* start = slash;
    while (start > text && start[-1] != ' ')
        start--;
    char token[TOKEN_SIZE];
    size_t len = size_t(slash - start);
    if (len >= sizeof token)
        len = sizeof token - 1;
    std::memcpy(token, start, len);
    token[len] = 0;
    if (std::strstr(token, "-M"))
        *eval = -MATE_EVAL;
    else if (std::strstr(token, "+M"))
        *eval = MATE_EVAL;
    else
        *eval = int16_t(pawns_to_centipawns(token));
    return true;
}
