// Endgame tablebases in the Syzygy format.
#pragma once

// (Re)initialises from a list of directories separated by ";" or ":".
void tb_init(const char* path);
