// The tables found in the directories: two registries (without and with
// pawns), a hash of material keys over them, and the opening of a table's
// files on the first probe that needs them.
#pragma once

#include "tablebase/tb_files.h"
#include "tablebase/tb_layout.h"

#include <atomic>

enum TbKind { TB_WDL = 0, TB_DTZ = 1 };

struct TbTable {
    char name[16];  // as the files are named, e.g. "KRPvKR"
    TbMaterial material;
    uint64_t key;   // material key with the side named first as White
    uint64_t key2;  // the same men with the colours exchanged
    std::atomic<uint8_t> state[2]; // per kind: not tried, ready, failed
    TbMapping file[2];
    TbLayout* layout[2];
};

// Releases every mapping and decoding record and empties the registries.
void tb_registry_clear();

// Registers every material of up to six men whose ".rtbw" file one of the
// directories holds. Returns the count; *largest becomes the most men.
int tb_registry_scan(uint32_t* largest);

// The table of a material key and whether its colours are exchanged
// against the position's; nullptr when none was found.
TbTable* tb_find_table(uint64_t key, bool* colours_exchanged);

// The decoding record of a table's file, opened and checked on first use
// (reporting a missing or corrupt file once); nullptr when it cannot serve.
const TbLayout* tb_table_layout(TbTable* t, TbKind kind);

// Turns "KQPvKR" into the table's material; false for a name that is not one.
bool tb_material_of_name(const char* name, TbMaterial* m);
