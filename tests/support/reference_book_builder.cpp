#include "support/reference_book_builder.h"
#include "support/long_way_move_reader.h"

#include "board/fen.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "book/book_entry.h"
#include "book/book_key.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace
{

struct Node {
    uint64_t key;
    uint32_t wins, losses;
    int32_t draws;
    Move move;
    Node* next;
};

struct Reference {
    Node* table[16384] = {};
    Game replay;
    int result = 3, ply_count = 0, comment_depth = 0, variation_depth = 0;
    bool broken = false;
    int games = 0, moves = 0;
};

// Every legal move's four texts against the input, as the notation layer
// describes its parser.
bool read_move(const Position* pos, const char* text, Move* move)
{
    return matches_the_long_way(pos, text, move) == 1;
}

void record(Reference* r, uint64_t key, Move move, int outcome)
{
    Node** link = &r->table[key >> 50];
    while (*link && (*link)->key <= key) {
        if ((*link)->key == key && (*link)->move == move)
            break;
        link = &(*link)->next;
    }
    Node* node = *link;
    if (!node || node->key != key || node->move != move) {
        node = new Node{key, 0, 0, 0, move, *link};
        *link = node;
        r->moves++;
    }
    if (outcome > 0)
        node->wins++;
    else if (outcome < 0)
        node->losses++;
    else
        node->draws++;
}

void token(Reference* r, const char* t)
{
    if (r->broken || t[0] == ';' || t[0] == '$')
        return;
    if (!std::strcmp(t, "{"))
        r->comment_depth++;
    else if (!std::strcmp(t, "}"))
        r->comment_depth = std::max(r->comment_depth - 1, 0);
    else if (!std::strcmp(t, "("))
        r->variation_depth++;
    else if (!std::strcmp(t, ")"))
        r->variation_depth = std::max(r->variation_depth - 1, 0);
    if (t[0] == '{' || t[0] == '}' || t[0] == '(' || t[0] == ')')
        return;
    if (r->comment_depth > 0 || r->variation_depth > 0)
        return;
    if (!std::isalpha(static_cast<unsigned char>(t[0])) && std::strncmp(t, "0-", 2))
        return;
    Position* pos = &r->replay.pos;
    uint64_t key = book_key(pos);
    int outcome = r->result == 2                                                                     ? 0
                  : (r->result == 0 && pos->side == WHITE) || (r->result == 1 && pos->side == BLACK) ? 1
                                                                                                     : -1;
    Move move;
    if (!read_move(pos, t, &move)) {
        r->broken = true;
        return;
    }
    r->ply_count++;
    make_move(pos, move);
    record(r, key, move, outcome);
}

void line(Reference* r, const char* text)
{
    if (std::strstr(text, "[Result")) {
        set_position(&r->replay.pos, START_FEN);
        r->result = std::strstr(text, "1-0") ? 0 : std::strstr(text, "0-1") ? 1 : std::strstr(text, "1/2") ? 2 : 3;
        r->games++;
        r->ply_count = r->comment_depth = r->variation_depth = 0;
        r->broken = false;
        return;
    }
    if ((text[0] == '[' || text[0] == ';') && r->comment_depth <= 0)
        return;
    if (r->result == 3 || r->ply_count >= 36)
        return;
    std::string t;
    for (const char* p = text;; p++) {
        char c = *p;
        if (c == 0 || c == ' ' || std::strchr("{}()", c)) {
            if (!t.empty())
                token(r, t.c_str());
            t.clear();
            if (c == 0)
                break;
            if (c != ' ')
                token(r, std::string(1, c).c_str());
        } else if (!std::iscntrl(static_cast<unsigned char>(c))) {
            t += c;
        }
    }
}

void write(const Reference* r, FILE* out)
{
    for (Node* node : r->table) {
        while (node) {
            uint64_t key = node->key;
            std::vector<BookEntry> entries;
            std::vector<long long> scores;
            for (; node && node->key == key; node = node->next) {
                long long score = node->draws + (2LL * node->wins - node->losses) * 2;
                if (score >= 10 && node->wins >= 3 && entries.size() < 128) {
                    entries.push_back({key, move_to_book_move(node->move), 0, 0});
                    scores.push_back(score);
                }
            }
            if (entries.empty())
                continue;
            long long max = *std::max_element(scores.begin(), scores.end());
            double scale = 60000.0 / double(max) < 1.0 ? 60000.0 / double(max) : 1.0;
            for (size_t i = 0; i < entries.size(); i++)
                entries[i].weight = uint16_t(int(double(scores[i]) * scale));
            std::stable_sort(entries.begin(), entries.end(), [](const BookEntry& a, const BookEntry& b) {
                return a.key != b.key ? a.key < b.key : a.weight > b.weight;
            });
            for (const BookEntry& e : entries) {
                unsigned char bytes[BOOK_ENTRY_SIZE];
                encode_book_entry(&e, bytes);
                std::fwrite(bytes, 1, sizeof bytes, out);
            }
        }
    }
}

} // namespace

bool reference_build_book(const std::string& pgn_file, const std::string& book_file, ReferenceBookCounts* counts)
{
    FILE* in = std::fopen(pgn_file.c_str(), "r");
    if (!in)
        return false;
    std::unique_ptr<Reference> r(new Reference());
    game_init(&r->replay);
    char text[1024];
    while (std::fgets(text, sizeof text, in))
        line(r.get(), text);
    std::fclose(in);
    FILE* out = std::fopen(book_file.c_str(), "wb");
    if (out) {
        write(r.get(), out);
        std::fclose(out);
    }
    for (Node* node : r->table)
        while (node) {
            Node* next = node->next;
            delete node;
            node = next;
        }
    counts->games = r->games;
    counts->moves = r->moves;
    return true;
}
