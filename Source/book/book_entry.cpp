#include "book/book_entry.h"

#include <unistd.h>

namespace
{

// Promotion piece numbers of the book encoding, 0..7, to the engine's flags.
constexpr Move PROMOTION_FLAG[8] = {0, PROMO_KNIGHT, PROMO_BISHOP, PROMO_ROOK, PROMO_QUEEN, 0, 0, 0};

uint64_t read_big_endian(const unsigned char* bytes, int count)
{
    uint64_t value = 0;
    for (int i = 0; i < count; i++)
        value = value << 8 | bytes[i];
    return value;
}

void write_big_endian(uint64_t value, int count, unsigned char* bytes)
{
    for (int i = count - 1; i >= 0; i--, value >>= 8)
        bytes[i] = static_cast<unsigned char>(value);
}

} // namespace

void decode_book_entry(const unsigned char* bytes, BookEntry* entry)
{
    entry->key = read_big_endian(bytes, 8);
    entry->move = uint16_t(read_big_endian(bytes + 8, 2));
    entry->weight = uint16_t(read_big_endian(bytes + 10, 2));
    entry->learn = uint32_t(read_big_endian(bytes + 12, 4));
}

void encode_book_entry(const BookEntry* entry, unsigned char* bytes)
{
    write_big_endian(entry->key, 8, bytes);
    write_big_endian(entry->move, 2, bytes + 8);
    write_big_endian(entry->weight, 2, bytes + 10);
    write_big_endian(entry->learn, 4, bytes + 12);
}

int read_book_entry(int fd, int64_t index, BookEntry* entry)
{
    unsigned char bytes[BOOK_ENTRY_SIZE];
    if (index < 0 || pread(fd, bytes, sizeof bytes, off_t(index) * BOOK_ENTRY_SIZE) != ssize_t(sizeof bytes))
        return 1;
    decode_book_entry(bytes, entry);
    return 0;
}

Move book_move_to_move(uint16_t book_move)
{
    int to = book_move & 63;
    int from = book_move >> 6 & 63;
    if (from == 4 && to == 7)
        to = 6;
    else if (from == 4 && to == 0)
        to = 2;
    else if (from == 60 && to == 63)
        to = 62;
    else if (from == 60 && to == 56)
        to = 58;
    return Move(make_move_code(from, to) | PROMOTION_FLAG[book_move >> 12 & 7]);
}

uint16_t move_to_book_move(Move move)
{
    int from = move_from(move), to = move_to(move);
    if (from == 4 && to == 6)
        to = 7;
    else if (from == 4 && to == 2)
        to = 0;
    else if (from == 60 && to == 62)
        to = 63;
    else if (from == 60 && to == 58)
        to = 56;
    int promotion = 0;
    switch (promotion_type(move)) {
    case KNIGHT:
        promotion = 1;
        break;
    case BISHOP:
        promotion = 2;
        break;
    case ROOK:
        promotion = 3;
        break;
    case QUEEN:
        promotion = 4;
        break;
    default:
        break;
    }
    return uint16_t(promotion << 12 | from << 6 | to);
}
