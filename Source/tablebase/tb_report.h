// Everything the tablebases say: the count of tables found goes to the
// interface; trouble with files goes to standard error (and the log). A
// missing, unreadable or damaged file only takes its table out of play; a
// full registry and a failed mapping end the program.
#pragma once

void tb_report_found(int count);
void tb_report_missing(const char* name, const char* extension);
void tb_report_corrupt();
void tb_report_unmap_failure(int error);
void tb_report_close_failure(int error);

// A registry or a bucket of the key hash is full.
[[noreturn]] void tb_fail_capacity(const char* message);
// The file could not be measured for mapping: its table is not used.
void tb_report_unmeasured(const char* directory, const char* file_name, int error);
// The mapping itself failed: the address space is exhausted.
[[noreturn]] void tb_fail_view(const char* directory, const char* file_name, unsigned long error);
