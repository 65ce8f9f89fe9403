#include "tablebase/tb_registry.h"

#include "tablebase/tb_report.h"

#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <unistd.h>

namespace
{

// Every material of up to six men has a place: 254 without pawns and 256
// with them (the full published set).
constexpr int PIECE_TABLE_CAPACITY = 254;
constexpr int PAWN_TABLE_CAPACITY = 256;
constexpr int HASH_BITS = 11;
constexpr int HASH_SLOTS = 6;
constexpr int MAX_EXTRA_MEN = TB_MAX_MEN - 2;

enum : uint8_t { NOT_TRIED, READY, FAILED };

struct HashSlot {
    uint64_t key;
    TbTable* table;
};

TbTable piece_tables[PIECE_TABLE_CAPACITY];
TbTable pawn_tables[PAWN_TABLE_CAPACITY];
int piece_table_count = 0;
int pawn_table_count = 0;
HashSlot key_hash[1 << HASH_BITS][HASH_SLOTS];

// Serialises the opening of table files; probes that find a file opened
// never take it.
std::mutex tb_mutex;

constexpr char LETTERS[] = "QRBNP"; // strongest first, as the files are named

inline unsigned hash_index(uint64_t key)
{
    return unsigned((key * 0x9E3779B97F4A7C15ULL) >> (64 - HASH_BITS));
}

uint64_t material_key(const TbMaterial* m, bool exchanged)
{
    uint64_t key = 0;
    for (int s = 0; s < 2; s++)
        for (int type = 1; type <= 5; type++)
            key |= uint64_t(m->count[type + 8 * s]) << (20 * (s ^ int(exchanged)) + 4 * (type - 1));
    return key;
}

void hash_insert(uint64_t key, TbTable* t)
{
    HashSlot* bucket = key_hash[hash_index(key)];
    for (int i = 0; i < HASH_SLOTS; i++)
        if (!bucket[i].table) {
            bucket[i] = HashSlot{key, t};
            return;
        }
    tb_fail_capacity("HSHMAX too low!");
}

void register_table(const char* name)
{
    TbMaterial m;
    if (!tb_material_of_name(name, &m))
        return;
    TbTable* t;
    if (m.pawns) {
        if (pawn_table_count == PAWN_TABLE_CAPACITY)
            tb_fail_capacity("TBMAX_PAWN limit too low!");
        t = &pawn_tables[pawn_table_count++];
    } else {
        if (piece_table_count == PIECE_TABLE_CAPACITY)
            tb_fail_capacity("TBMAX_PIECE limit too low!");
        t = &piece_tables[piece_table_count++];
    }
    std::snprintf(t->name, sizeof t->name, "%s", name);
    t->material = m;
    t->key = material_key(&m, false);
    t->key2 = material_key(&m, true);
    for (int k = 0; k < 2; k++) {
        t->state[k].store(NOT_TRIED, std::memory_order_relaxed);
        t->file[k] = TbMapping{nullptr, 0, -1};
        t->layout[k] = nullptr;
    }
    hash_insert(t->key, t);
    if (t->key2 != t->key)
        hash_insert(t->key2, t);
}

// All choices of `n` letters, each in the files' letter order, as indexes
// into LETTERS; returns how many were written.
int letter_sets(int n, int sets[][MAX_EXTRA_MEN])
{
    int count = 0, cur[MAX_EXTRA_MEN] = {};
    for (;;) {
        if (n > 0 || count == 0) {
            for (int i = 0; i < n; i++)
                sets[count][i] = cur[i];
            count++;
        }
        if (n == 0)
            return count;
        int i = n - 1;
        while (i >= 0 && cur[i] == 4)
            i--;
        if (i < 0)
            return count;
        cur[i]++;
        for (int j = i + 1; j < n; j++)
            cur[j] = cur[i];
    }
}

void write_side(char* out, const int* set, int n)
{
    *out++ = 'K';
    for (int i = 0; i < n; i++)
        *out++ = LETTERS[set[i]];
    *out = 0;
}

// True when the first side's letters come before the second's (or match).
bool not_after(const int* a, const int* b, int n)
{
    for (int i = 0; i < n; i++)
        if (a[i] != b[i])
            return a[i] < b[i];
    return true;
}

bool open_table(TbTable* t, TbKind kind)
{
    const char* extension = kind == TB_WDL ? ".rtbw" : ".rtbz";
    int directory = 0;
    int fd = tb_open_file(t->name, extension, &directory);
    if (fd < 0) {
        tb_report_missing(t->name, extension);
        return false;
    }
    char file_name[32];
    std::snprintf(file_name, sizeof file_name, "%s%s", t->name, extension);
    TbMapping* file = &t->file[kind];
    if (!tb_map_file(fd, directory, file_name, file)) {
        tb_report_corrupt();
        return false;
    }
    TbLayout* layout = new (std::nothrow) TbLayout;
    if (!layout || !tb_layout_read(layout, file->data, file->size, &t->material, kind == TB_DTZ)) {
        delete layout;
        tb_unmap_file(file);
        tb_report_corrupt();
        return false;
    }
    t->layout[kind] = layout;
    return true;
}

void release_table(TbTable* t)
{
    for (int k = 0; k < 2; k++) {
        if (t->layout[k]) {
            tb_layout_release(t->layout[k]);
            delete t->layout[k];
            t->layout[k] = nullptr;
        }
        tb_unmap_file(&t->file[k]);
        t->state[k].store(NOT_TRIED, std::memory_order_relaxed);
    }
}

} // namespace

bool tb_material_of_name(const char* name, TbMaterial* m)
{
    *m = TbMaterial{};
    const char* v = std::strchr(name, 'v');
    if (name[0] != 'K' || !v || v[1] != 'K')
        return false;
    int side = 0;
    for (const char* p = name; *p; p++) {
        if (*p == 'v') {
            side = 1;
            continue;
        }
        static const char TYPES[] = "PNBRQK"; // in the order of the piece types
        const char* at = std::strchr(TYPES, *p);
        if (!at)
            return false;
        m->count[(at - TYPES + 1) + 8 * side]++;
        m->men++;
    }
    if (m->men > TB_MAX_MEN || m->count[6] != 1 || m->count[14] != 1)
        return false;
    m->pawns = m->count[1] || m->count[9];
    m->symmetric = std::memcmp(m->count, m->count + 8, 8) == 0;
    return true;
}

void tb_registry_clear()
{
    for (int i = 0; i < piece_table_count; i++)
        release_table(&piece_tables[i]);
    for (int i = 0; i < pawn_table_count; i++)
        release_table(&pawn_tables[i]);
    piece_table_count = pawn_table_count = 0;
    std::memset(key_hash, 0, sizeof key_hash);
}

int tb_registry_scan(uint32_t* largest)
{
    static int sets[5][70][MAX_EXTRA_MEN];
    int set_count[5];
    for (int n = 0; n <= MAX_EXTRA_MEN; n++)
        set_count[n] = letter_sets(n, sets[n]);

    *largest = 0;
    int found = 0;
    char name[16];
    // The side with more men is named first; with equal numbers the
    // stronger letters come first.
    for (int first = 1; first <= MAX_EXTRA_MEN; first++)
        for (int second = 0; second <= first && first + second <= MAX_EXTRA_MEN; second++)
            for (int a = 0; a < set_count[first]; a++)
                for (int b = 0; b < set_count[second]; b++) {
                    if (first == second && !not_after(sets[first][a], sets[second][b], first))
                        continue;
                    write_side(name, sets[first][a], first);
                    size_t len = std::strlen(name);
                    name[len] = 'v';
                    write_side(name + len + 1, sets[second][b], second);
                    int directory;
                    int fd = tb_open_file(name, ".rtbw", &directory);
                    if (fd < 0)
                        continue;
                    close(fd);
                    register_table(name);
                    found++;
                    if (uint32_t(first + second + 2) > *largest)
                        *largest = uint32_t(first + second + 2);
                }
    return found;
}

TbTable* tb_find_table(uint64_t key, bool* colours_exchanged)
{
    const HashSlot* bucket = key_hash[hash_index(key)];
    for (int i = 0; i < HASH_SLOTS && bucket[i].table; i++)
        if (bucket[i].key == key) {
            *colours_exchanged = bucket[i].table->key != key;
            return bucket[i].table;
        }
    return nullptr;
}

const TbLayout* tb_table_layout(TbTable* t, TbKind kind)
{
    uint8_t s = t->state[kind].load(std::memory_order_acquire);
    if (s == NOT_TRIED) {
        std::lock_guard<std::mutex> lock(tb_mutex);
        s = t->state[kind].load(std::memory_order_relaxed);
        if (s == NOT_TRIED) {
            s = open_table(t, kind) ? READY : FAILED;
            t->state[kind].store(s, std::memory_order_release);
        }
    }
    return s == READY ? t->layout[kind] : nullptr;
}
