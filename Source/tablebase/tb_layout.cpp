#include "tablebase/tb_layout.h"

#include <cstring>

namespace
{

constexpr uint8_t WDL_MAGIC[4] = {0x71, 0xE8, 0x23, 0x5D};
constexpr uint8_t DTZ_MAGIC[4] = {0xD7, 0x66, 0x0C, 0xA5};
constexpr int FILE_SPLIT = 1; // a win/draw/loss file keeps both sides to move
constexpr int FILE_PAWNS = 2;
constexpr int CHECKSUM_BYTES = 16;

// Reads the ordering block of one pawn file (or of the whole table): the
// ordering byte(s), then a byte per man with one side's code in each nibble.
bool read_ordering(TbCursor* c, TbLayout* t, const TbMaterial* m, int file)
{
    bool both_pawns = m->count[1] && m->count[9];
    int order = tb_byte(c);
    int order2 = both_pawns ? tb_byte(c) : 0;
    const uint8_t* codes = tb_take(c, m->men);
    if (!codes)
        return false;
    for (int s = 0; s < t->sides; s++) {
        TbEncoding* e = &t->part[file][s].enc;
        *e = TbEncoding{};
        e->men = m->men;
        int shown[16] = {};
        for (int i = 0; i < m->men; i++) {
            e->code[i] = uint8_t(s ? codes[i] >> 4 : codes[i] & 0x0F);
            shown[e->code[i]]++;
        }
        for (int k = 0; k < 16; k++)
            if (shown[k] != m->count[k])
                return false;
        if (m->pawns) {
            int lead = e->code[0];
            if ((lead & 7) != 1)
                return false;
            if (t->lead_code == 0)
                t->lead_code = uint8_t(lead);
            if (lead != t->lead_code)
                return false;
            e->lead_pawns = m->count[lead];
            e->other_pawns = m->count[lead ^ 8];
            e->pawn_file = uint8_t(file);
            t->lead_pawns = e->lead_pawns;
        }
        int o = s ? order >> 4 : order & 0x0F;
        int o2 = both_pawns ? (s ? order2 >> 4 : order2 & 0x0F) : -1;
        if (!tb_set_factors(e, o, o2))
            return false;
    }
    return true;
}

// The four maps of a mapped distance-to-zero part: a count, then entries.
bool read_maps(TbCursor* c, TbPart* p)
{
    bool wide = p->pairs.flags & DTZ_WIDE_MAPS;
    if (wide)
        tb_align(c, 2);
    for (int k = 0; k < 4; k++) {
        const uint8_t* n = tb_take(c, wide ? 2 : 1);
        if (!n)
            return false;
        p->map_size[k] = wide ? read_le16(n) : *n;
        p->map[k] = tb_take(c, uint64_t(p->map_size[k]) * (wide ? 2 : 1));
    }
    return c->ok;
}

} // namespace

bool tb_layout_read(TbLayout* t, const uint8_t* data, size_t size, const TbMaterial* m, bool dtz)
{
    *t = TbLayout{};
    t->dtz = dtz;
    TbCursor c = tb_cursor(data, size);
    const uint8_t* magic = tb_take(&c, 4);
    if (!magic || std::memcmp(magic, dtz ? DTZ_MAGIC : WDL_MAGIC, 4) != 0)
        return false;
    int flags = tb_byte(&c);
    if (bool(flags & FILE_PAWNS) != m->pawns)
        return false;
    if (!dtz && bool(flags & FILE_SPLIT) == m->symmetric)
        return false;
    t->files = m->pawns ? 4 : 1;
    t->sides = !dtz && !m->symmetric ? 2 : 1;

    // Step 1: the men's ordering of every part.
    for (int f = 0; f < t->files; f++)
        if (!read_ordering(&c, t, m, f))
            return false;
    tb_align(&c, 2);

    // Step 2: the stream headers, then (distance-to-zero) the maps.
    for (int f = 0; f < t->files; f++)
        for (int s = 0; s < t->sides; s++) {
            TbPart* p = &t->part[f][s];
            if (!tb_pairs_header(&c, p->enc.positions, &p->pairs)) {
                tb_layout_release(t);
                return false;
            }
        }
    if (dtz) {
        for (int f = 0; f < t->files; f++) {
            TbPart* p = &t->part[f][0];
            if ((p->pairs.flags & DTZ_MAPPED) && !read_maps(&c, p)) {
                tb_layout_release(t);
                return false;
            }
        }
        tb_align(&c, 2);
    }

    // Step 3: the sparse indexes, the block sizes and the blocks.
    for (int f = 0; f < t->files; f++)
        for (int s = 0; s < t->sides; s++)
            t->part[f][s].pairs.sparse = tb_take(&c, tb_sparse_bytes(&t->part[f][s].pairs));
    for (int f = 0; f < t->files; f++)
        for (int s = 0; s < t->sides; s++)
            t->part[f][s].pairs.block_sizes = tb_take(&c, tb_sizes_bytes(&t->part[f][s].pairs));
    for (int f = 0; f < t->files; f++)
        for (int s = 0; s < t->sides; s++) {
            tb_align(&c, 64);
            t->part[f][s].pairs.blocks = tb_take(&c, tb_blocks_bytes(&t->part[f][s].pairs));
        }
    // Every published file ends in a 16-byte checksum: a file shorter than
    // that has lost data.
    tb_take(&c, CHECKSUM_BYTES);
    if (!c.ok) {
        tb_layout_release(t);
        return false;
    }
    return true;
}

void tb_layout_release(TbLayout* t)
{
    for (int f = 0; f < 4; f++)
        for (int s = 0; s < 2; s++)
            tb_pairs_release(&t->part[f][s].pairs);
}

int tb_map_distance(const TbPart* p, int slot, int stored)
{
    if (!(p->pairs.flags & DTZ_MAPPED))
        return stored;
    if (stored >= p->map_size[slot])
        return -1;
    const uint8_t* m = p->map[slot];
    return p->pairs.flags & DTZ_WIDE_MAPS ? read_le16(m + 2 * stored) : m[stored];
}
