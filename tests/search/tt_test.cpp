#include "search/tt.h"
#include "support/test_positions.h"
#include "uci/options.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace
{

class TransTableTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        t = new_test_thread();
        set_test_position(t, "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -");
        tt_allocate(1);
        tt.use_hash = 1;
        tt.age = 1;
    }
    void TearDown() override { free_test_thread(t); }
    TransEntry probe_key(uint64_t key)
    {
        uint64_t saved = t->pos.key;
        t->pos.key = key;
        TransEntry e;
        e.depth = TT_MISS;
        tt_probe(&t->pos, &e);
        t->pos.key = saved;
        return e;
    }
    TransEntry probe() { return probe_key(t->pos.key); }
    SearchThread* t = nullptr;
    const Move bc4 = make_move_code(5, 26); // Bf1-c4
};

} // namespace

// Every bucket lies inside the table (its spare entries included), and a
// size that is not a power of two is still used to its end.
TEST_F(TransTableTest, BucketsStayInTheTable)
{
    std::mt19937_64 rng(7);
    for (int mb : {1, 3, 5}) {
        tt_allocate(mb);
        uint64_t lowest = ~0ULL, highest = 0;
        for (int i = 0; i < 100000; i++) {
            uint64_t b = tt_bucket_index(rng());
            ASSERT_LE(b + 4, uint64_t(tt.entries) + 16) << mb << " MB";
            lowest = std::min(lowest, b), highest = std::max(highest, b);
        }
        EXPECT_LT(lowest, 64u);
        EXPECT_GT(highest + 64, uint64_t(tt.entries)) << mb << " MB";
    }
    tt_allocate(1);
}

TEST_F(TransTableTest, StoreProbeAndRefusals)
{
    EXPECT_LT(probe().depth, -9);
    tt_store(&t->pos, 3, 8, bc4, 37, 0, 100);
    TransEntry e = probe();
    EXPECT_EQ(e.depth, 8);
    EXPECT_EQ(e.move, bc4);
    EXPECT_EQ(e.score, 37);
    EXPECT_EQ(e.bound, BOUND_EXACT);
    EXPECT_EQ(e.age, 1);

    // A shallower draft on the same key is refused only when the old one is
    // more than 3 deeper and the fifty-move counter has not grown.
    tt_store(&t->pos, 3, 5, bc4, 11, 0, 100);
    EXPECT_EQ(probe().score, 11);
    tt_store(&t->pos, 3, 1, bc4, 12, 0, 100);
    EXPECT_EQ(probe().score, 11);
    tt_store(&t->pos, 3, 9, bc4, 14, 0, 100);
    tt_store(&t->pos, 3, 5, bc4, 15, 0, 100);
    EXPECT_EQ(probe().score, 14);
    t->pos.fifty++;
    tt_store(&t->pos, 3, 5, bc4, 13, 20, 100);
    EXPECT_EQ(probe().score, 13);
    EXPECT_EQ(probe().bound, BOUND_UPPER);
    tt_store(&t->pos, 3, 5, bc4, 150, 20, 100);
    EXPECT_EQ(probe().bound, BOUND_LOWER);

    // Mate scores are made relative from 9699 on; 9599..9698 are not.
    tt_store(&t->pos, 5, 9, 0, 9700, -10001, 10001);
    EXPECT_EQ(probe().score, 9705);
    tt_store(&t->pos, 5, 9, 0, 9698, -10001, 10001);
    EXPECT_EQ(probe().score, 9698);
    tt_store(&t->pos, 5, 9, 0, -9699, -10001, 10001);
    EXPECT_EQ(probe().score, -9699);
    tt_store(&t->pos, 5, 9, 0, -9700, -10001, 10001);
    EXPECT_EQ(probe().score, -9705);

    tt.use_hash = 0;
    EXPECT_LT(probe().depth, -9);
}

// A full bucket of this search gives up its shallowest draft, the first of
// equals, unless the new one is more than 7 shallower still; a new search
// takes the first slot of an older one, however deep.
TEST_F(TransTableTest, AFullBucketGivesUpItsShallowestOrOldestDraft)
{
    struct {
        std::vector<int> stored, kept; // -9: not found
        bool new_search = false;       // for the last one stored
    } cases[] = {{{6, 4, 8, 5, 3}, {6, -9, 8, 5, 3}},       {{4, 4, 4, 4, 3}, {-9, 4, 4, 4, 3}},
                 {{6, 6, 4, 4, 3}, {6, 6, -9, 4, 3}},       {{4, 5, 4, 6, 3}, {-9, 5, 4, 6, 3}},
                 {{9, 9, 9, 9, 2}, {-9, 9, 9, 9, 2}},       {{9, 9, 9, 9, 1}, {9, 9, 9, 9, -9}},
                 {{20, 3, 3, 3, 1}, {-9, 3, 3, 3, 1}, true}};
    const uint64_t saved = t->pos.key;
    for (uint64_t c = 0; c < std::size(cases); c++) {
        auto key = [&](uint64_t n) { return saved + (c << 10) + (n << 24); }; // a bucket each, a lock each
        for (uint64_t n = 0; n < 5; n++) {
            tt.age = n == 4 && cases[c].new_search ? 2 : 1;
            t->pos.key = key(n);
            tt_store(&t->pos, 3, cases[c].stored[n], 0, 10, 0, 100);
        }
        std::vector<int> kept;
        for (uint64_t n = 0; n < 5; n++)
            kept.push_back(std::max<int>(probe_key(key(n)).depth, -9));
        EXPECT_EQ(kept, cases[c].kept) << c;
    }
}

TEST_F(TransTableTest, TornEntriesAndForeignMovesAreMisses)
{
    tt_store(&t->pos, 3, 8, bc4, 37, 0, 100);
    uint64_t* words = tt.words + 2 * tt_bucket_index(t->pos.key);
    words[1] ^= uint64_t(5) << 16; // another writer's score: the check word no longer fits
    EXPECT_EQ(probe().depth, TT_TORN);
    tt_store(&t->pos, 3, 9, make_move_code(0, 63), 37, 0, 100); // a move that cannot be played here
    EXPECT_EQ(probe().depth, TT_BAD_MOVE);
}

// Clearing in slices, as the workers do, leaves no entry behind whatever the
// number of workers: the last slice takes the remainder of the even split.
TEST_F(TransTableTest, ClearingInSlicesLeavesNothing)
{
    uint64_t words = (uint64_t(tt.entries) + 16) * 2;
    for (int workers : {1, 2, 3, 7, 128}) {
        std::memset(tt.words, 0xA5, words * 8);
        for (int i = 0; i < workers; i++)
            tt_clear_slice(i, workers);
        uint64_t left = 0;
        for (uint64_t w = 0; w < words; w++)
            left += tt.words[w] != 0;
        EXPECT_EQ(left, 0u) << workers << " workers";
    }
}

// A new table is written whole when the engine allocates it, so that the
// first search does not pay for faulting its pages in (with huge pages,
// most of a short first move).
TEST_F(TransTableTest, AnAllocatedTableIsInMemoryBeforeTheFirstSearch)
{
    ASSERT_EQ(allocate_hash(8), 1);
    size_t bytes = (size_t(tt.entries) + 16) * 16;
    size_t page = size_t(sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> resident((bytes + page - 1) / page);
    ASSERT_EQ(mincore(tt.words, bytes, resident.data()), 0);
    size_t out = 0;
    for (unsigned char r : resident)
        out += !(r & 1);
    EXPECT_EQ(out, 0u) << "of " << resident.size() << " pages";
    EXPECT_LT(probe_key(0x1234567890ABCDEFULL).depth, -9);
    tt_allocate(1);
}
