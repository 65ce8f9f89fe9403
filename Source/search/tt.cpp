#include "search/tt.h"

#include "board/zobrist.h"

namespace {
bool keys_made = false;
int table_megabytes = 0;
}  // namespace

int tt_allocate(int megabytes)
{
    if (!keys_made) {
        init_zobrist();
        keys_made = true;
    }
    table_megabytes = megabytes;
    return 1;
}

int tt_megabytes() { return table_megabytes; }

void tt_clear() {}
