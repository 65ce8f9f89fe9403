#include "tablebase/tbprobe.h"

void tb_init(const char*) {}
