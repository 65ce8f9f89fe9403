// The book builder's counting table, past the size at which its index grows
// (three quarters of 65,536 places) and with keys that share their low bits.
#include "book/book_table.h"

#include <array>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

TEST(BookTable, CountsSurviveTheIndexGrowing)
{
    BookTable table;
    ASSERT_EQ(book_table_init(&table), 1);
    std::mt19937_64 rng(5);
    std::map<std::pair<uint64_t, Move>, std::array<int, 4>> expected; // wins, losses, draws, first-seen order
    std::vector<BookRecord> batch;
    for (int i = 0; i < 300000; i++) {
        uint64_t key = rng() % 90000;
        key = key << 40 | key; // many keys alike in their low bits
        Move move = Move(rng() % 3 + 1);
        int8_t outcome = int8_t(int(rng() % 3) - 1);
        auto [it, fresh] = expected.try_emplace({key, move}, std::array<int, 4>{0, 0, 0, int(expected.size()) + 1});
        it->second[outcome > 0 ? 0 : outcome < 0 ? 1 : 2]++;
        batch.push_back({key, move, outcome});
        if (batch.size() == 1000 || i == 299999) {
            ASSERT_EQ(book_table_record(&table, batch.data(), int(batch.size())), 1);
            batch.clear();
        }
    }
    ASSERT_GT(expected.size(), 100000u);
    ASSERT_EQ(table.count, expected.size());
    for (const auto& [pair, c] : expected) {
        const BookNode* node = book_node(&table, uint32_t(c[3]));
        ASSERT_EQ(node->key, pair.first);
        ASSERT_EQ(node->move, pair.second);
        ASSERT_EQ(int(node->wins), c[0]);
        ASSERT_EQ(int(node->losses), c[1]);
        ASSERT_EQ(node->draws, c[2]);
    }
    book_table_free(&table);
}
