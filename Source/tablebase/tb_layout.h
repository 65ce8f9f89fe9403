// The layout of a table file, checked against the file's length while it is
// read: the header with the men's ordering, the stream headers, then the
// sparse indexes, the block sizes and the blocks of every stream.
//
// Win/draw/loss files (".rtbw") keep both sides to move when the material
// differs; distance-to-zero files (".rtbz") keep one side to move and may
// translate their stored numbers through four small maps. Tables with pawns
// hold one part per file of the leading pawn (a to d).
#pragma once

#include "tablebase/tb_index.h"
#include "tablebase/tb_pairs.h"

#include <cstddef>

// The material of a table in its own colours: the side named first is
// White (piece codes 1..6), the other Black (9..14).
struct TbMaterial {
    uint8_t count[16];
    uint8_t men;
    bool pawns;
    bool symmetric; // both sides hold the same men
};

// Flags of a distance-to-zero stream.
constexpr int DTZ_BLACK_TO_MOVE = 1; // the stream serves the table's Black to move
constexpr int DTZ_MAPPED = 2;        // stored numbers go through the maps
constexpr int DTZ_WIN_PLIES = 4;     // wins counted in plies, not moves
constexpr int DTZ_LOSS_PLIES = 8;    // losses likewise
constexpr int DTZ_WIDE_MAPS = 16;    // map entries of two bytes

// Map order of the four results a distance can belong to.
enum TbMapSlot { MAP_WIN, MAP_LOSS, MAP_CURSED_WIN, MAP_BLESSED_LOSS };

struct TbPart {
    TbEncoding enc;
    TbPairs pairs;
    const uint8_t* map[4]; // distance-to-zero only, when mapped
    uint16_t map_size[4];
};

struct TbLayout {
    TbPart part[4][2]; // [file of the leading pawn][table side to move]
    uint8_t files;     // 1 without pawns, 4 with
    uint8_t sides;     // 2, or 1 when only one side to move is stored
    uint8_t lead_code; // piece code of the leading pawns, 0 without pawns
    uint8_t lead_pawns;
    bool dtz;
};

// Reads the mapped file into `t`; false when it is not a table of this
// material and kind or leads anywhere outside itself.
bool tb_layout_read(TbLayout* t, const uint8_t* data, size_t size, const TbMaterial* m, bool dtz);

void tb_layout_release(TbLayout* t);

// The stored distance number translated through the part's map; -1 when
// the map has no such entry.
int tb_map_distance(const TbPart* p, int slot, int stored);
