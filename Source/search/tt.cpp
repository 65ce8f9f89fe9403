#include "search/tt.h"

#include "board/movegen.h"
#include "search/search_values.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <sys/mman.h>

TransTable tt;

namespace
{

void* mapped = nullptr;
size_t mapped_bytes = 0;
constexpr size_t HUGE_PAGE = 2 * 1024 * 1024;
constexpr int HUGE_PAGE_TABLE_LIMIT = 1024; // megabytes

// An entry is two 64-bit words read and written with relaxed atomics:
// word 0 = lock | check << 32,
// word 1 = move | score << 16 | depth << 32 | bound << 40 | age << 48 | halfmove << 56.
inline uint64_t load(uint64_t* w)
{
    return std::atomic_ref<uint64_t>(*w).load(std::memory_order_relaxed);
}
inline void save(uint64_t* w, uint64_t v)
{
    std::atomic_ref<uint64_t>(*w).store(v, std::memory_order_relaxed);
}

inline TransEntry unpack(uint64_t w0, uint64_t w1)
{
    TransEntry e;
    e.lock = uint32_t(w0);
    e.check = uint32_t(w0 >> 32);
    e.move = uint16_t(w1);
    e.score = int16_t(uint16_t(w1 >> 16));
    e.depth = int8_t(uint8_t(w1 >> 32));
    e.bound = uint8_t(w1 >> 40);
    e.age = uint8_t(w1 >> 48);
    e.halfmove = uint8_t(w1 >> 56);
    return e;
}

inline uint32_t check_word(uint64_t key, int score, Move move)
{
    return uint32_t(key >> 32) ^ uint32_t(score + 15000) ^ (uint32_t(move) << 16);
}

inline uint64_t* entry_words(uint64_t index)
{
    return tt.words + 2 * index;
}

// Pages in memory are zeroed in place, so that the next search does not pay
// for faulting them in afresh; pages that are not (never touched, or swapped
// out) are handed back, after which they read as zero and cost memory only
// once touched again.
void zero_pages(char* begin, char* end)
{
    const size_t page = 4096;
    constexpr size_t BATCH = 4096; // pages per residency query
    unsigned char resident[BATCH];
    for (char* p = begin; p < end;) {
        size_t pages = std::min(BATCH, size_t(end - p) / page);
        if (mincore(p, pages * page, resident) != 0) {
            if (madvise(p, pages * page, MADV_DONTNEED) != 0)
                std::memset(p, 0, pages * page);
            p += pages * page;
            continue;
        }
        for (size_t i = 0; i < pages;) {
            size_t j = i + 1;
            bool in_memory = resident[i] & 1;
            while (j < pages && bool(resident[j] & 1) == in_memory)
                j++;
            char* run = p + i * page;
            size_t bytes = (j - i) * page;
            if (in_memory || madvise(run, bytes, MADV_DONTNEED) != 0)
                std::memset(run, 0, bytes);
            i = j;
        }
        p += pages * page;
    }
}

void zero_range(uint64_t first, uint64_t count)
{
    if (!count)
        return;
    char* begin = reinterpret_cast<char*>(entry_words(first));
    char* end = begin + count * 16;
    // A table of huge pages is written whole: a page first touched during a
    // search costs that search its fault (compacting memory for two
    // megabytes), which at a short time control is most of the first move.
    // The clear that follows allocation thus commits it.
    if (tt.megabytes <= HUGE_PAGE_TABLE_LIMIT) {
        std::memset(begin, 0, size_t(end - begin));
        return;
    }
    const uintptr_t page = 4096;
    char* inner_begin = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(begin) + page - 1) & ~(page - 1));
    char* inner_end = reinterpret_cast<char*>(reinterpret_cast<uintptr_t>(end) & ~(page - 1));
    if (inner_begin < inner_end) {
        std::memset(begin, 0, size_t(inner_begin - begin));
        std::memset(inner_end, 0, size_t(end - inner_end));
        zero_pages(inner_begin, inner_end);
    } else {
        std::memset(begin, 0, size_t(end - begin));
    }
}

} // namespace

void tt_free()
{
    if (mapped)
        munmap(mapped, mapped_bytes);
    mapped = nullptr;
    tt.words = nullptr;
    mapped_bytes = 0;
    tt.entries = 0;
}

int tt_allocate(int megabytes)
{
    uint32_t entries = uint32_t(megabytes) * 65536u;
    size_t bytes = (size_t(entries) + 16) * 16;
    // Mapped on a huge-page boundary and, up to a gigabyte, offered for huge
    // pages: the table's random accesses then cost far fewer address
    // translations. Such a table is committed by the clear that follows
    // allocation. Larger tables keep small pages and grow as they fill:
    // committing many gigabytes at once would hold up the interface for
    // seconds, and a short search would not pay for their faults anyway.
    size_t total = bytes + HUGE_PAGE;
    void* memory = mmap(nullptr, total, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    // Without the new table the old one stays as it was.
    if (memory == MAP_FAILED)
        return 0;
    tt_free();
    tt.megabytes = megabytes;
    tt.entries = entries;
    mapped = memory;
    mapped_bytes = total;
    uintptr_t aligned = (reinterpret_cast<uintptr_t>(memory) + HUGE_PAGE - 1) & ~(uintptr_t(HUGE_PAGE) - 1);
    tt.words = reinterpret_cast<uint64_t*>(aligned);
    if (bytes >= HUGE_PAGE && megabytes <= HUGE_PAGE_TABLE_LIMIT)
        madvise(tt.words, bytes & ~(HUGE_PAGE - 1), MADV_HUGEPAGE);
    uint64_t p = 1;
    while (p * 2 <= tt.entries)
        p *= 2;
    tt.index_mask = tt.entries ? p - 1 : ~0ULL;
    // The new mapping reads as zero but is not in memory yet: the caller
    // clears it once, before any search.
    return 1;
}

int tt_megabytes()
{
    return tt.megabytes;
}

void tt_clear_slice(int index, int count)
{
    if (!tt.words || count <= 0)
        return;
    uint64_t total = uint64_t(tt.entries) + 16;
    uint64_t share = total / uint64_t(count);
    uint64_t first = uint64_t(index) * share;
    // The last slice also takes what the even split leaves over.
    zero_range(first, index == count - 1 ? total - first : share);
}

void tt_clear()
{
    if (tt.words)
        zero_range(0, uint64_t(tt.entries) + 16);
}

void tt_new_search()
{
    tt.age = uint16_t(tt.age + 1);
    if (tt.age >= 16)
        tt.age = 1;
}

void tt_probe(const Position* pos, TransEntry* result)
{
    if (!tt.words || !tt.use_hash || !tt.entries)
        return;
    uint64_t key = pos->key;
    uint64_t* bucket = entry_words(tt_bucket_index(key));
    uint32_t lock = uint32_t(key);
    for (int slot = 0; slot < 4; slot++) {
        uint64_t w0 = load(bucket + 2 * slot);
        if (uint32_t(w0) != lock)
            continue;
        TransEntry e = unpack(w0, load(bucket + 2 * slot + 1));
        if (e.check != check_word(key, e.score, e.move))
            e.depth = TT_TORN;
        else if (e.move && !is_pseudo_legal(pos, e.move))
            e.depth = TT_BAD_MOVE;
        *result = e;
        return;
    }
}

void tt_store(const Position* pos, int ply, int depth, Move move, int score, int alpha, int beta)
{
    if (!tt.words || !tt.use_hash || !tt.entries)
        return;
    uint8_t bound = score <= alpha ? BOUND_UPPER : score < beta ? BOUND_EXACT : BOUND_LOWER;
    if (score < -STORE_MATE)
        score -= ply;
    else if (score > STORE_MATE_LOW)
        score += ply;
    uint64_t key = pos->key;
    uint32_t lock = uint32_t(key);
    uint64_t* bucket = entry_words(tt_bucket_index(key));
    TransEntry slots[4];
    for (int s = 0; s < 4; s++)
        slots[s] = unpack(load(bucket + 2 * s), load(bucket + 2 * s + 1));

    int target = -1;
    for (int s = 0; s < 4 && target < 0; s++) {
        if (slots[s].lock != lock)
            continue;
        if (slots[s].depth - 3 > depth && pos->fifty <= slots[s].halfmove)
            return;
        target = s;
    }
    uint8_t age = uint8_t(tt.age);
    for (int s = 0; s < 4 && target < 0; s++)
        if (slots[s].age != age)
            target = s;
    if (target < 0) {
        int a = slots[1].depth < slots[0].depth ? 1 : 0;
        int b = slots[3].depth < slots[2].depth ? 3 : 2;
        target = slots[b].depth < slots[a].depth ? b : a;
        if (slots[target].depth - 7 > depth)
            return;
    }
    uint64_t w0 = uint64_t(lock) | uint64_t(check_word(key, score, move)) << 32;
    uint64_t w1 = uint64_t(move) | uint64_t(uint16_t(int16_t(score))) << 16 | uint64_t(uint8_t(int8_t(depth))) << 32
                  | uint64_t(bound) << 40 | uint64_t(age) << 48 | uint64_t(pos->fifty) << 56;
    save(bucket + 2 * target, w0);
    save(bucket + 2 * target + 1, w1);
}

double tt_hashfull(int depth)
{
    if (depth <= 6 || tt.entries < 3000 || !tt.words)
        return 0.0;
    uint64_t first = tt.entries / 2 - 500;
    uint8_t age = uint8_t(tt.age);
    int count = 0;
    for (uint64_t i = first; i < first + 1000; i++)
        if (unpack(load(entry_words(i)), load(entry_words(i) + 1)).age == age)
            count++;
    return count * 0.001;
}
