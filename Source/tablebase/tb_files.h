// The directories that hold table files, finding a file in them, and
// mapping a file read-only into memory.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int TB_MAX_DIRECTORIES = 64;

// Takes the directories from a path list: pieces between ";" or ":" in
// order, empty pieces skipped. Returns how many were taken.
int tb_set_directories(const char* path);
int tb_directory_count();
const char* tb_directory(int i);

// Opens "<directory>/<name><extension>" from the first directory that has
// it. One budget of 259 characters serves the whole search: every directory
// tried spends the length of the full name built for it, and once the
// budget is spent no further directory is tried. Returns the descriptor and
// the directory's number, or -1.
int tb_open_file(const char* name, const char* extension, int* directory);

struct TbMapping {
    const uint8_t* data;
    size_t size;
    int fd; // -1 when nothing is mapped
};

// Maps the whole open file; false (nothing mapped, the descriptor closed)
// when the file cannot be measured (reported), is no regular file or is too
// short to hold a table. A failure of the mapping itself ends the program.
bool tb_map_file(int fd, int directory, const char* file_name, TbMapping* m);

// Unmaps and closes; failures are reported and otherwise ignored.
void tb_unmap_file(TbMapping* m);
