#include "tablebase/tb_report.h"

#include "output/output.h"

#include <cstdio>
#include <cstdlib>

void tb_report_found(int count)
{
    char line[64];
    send_line(format_line(line, sizeof line, "info string found %d tablebases", count));
}

void tb_report_missing(const char* name, const char* extension)
{
    std::fprintf(stderr, "Could not find %s%s\n", name, extension);
}

void tb_report_corrupt()
{
    std::fprintf(stderr, "Corrupted table.\n");
}

void tb_report_unmap_failure(int error)
{
    std::fprintf(stderr, "unmap failed, error code %d\n", error);
}

void tb_report_close_failure(int error)
{
    std::fprintf(stderr, "CloseHandle failed, error code %d\n", error);
}

void tb_fail_capacity(const char* message)
{
    std::fputs(message, stderr);
    std::exit(1);
}

void tb_fail_mapping()
{
    std::fprintf(stderr, "CreateFileMapping() failed.\n");
    std::exit(1);
}

void tb_fail_view(const char* directory, const char* file_name, unsigned long error)
{
    std::fprintf(stderr, "MapViewOfFile() failed, name = %s%s, error = %lu.\n", directory, file_name, error);
    std::exit(1);
}
