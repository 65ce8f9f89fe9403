#include "tablebase/tb_report.h"

#include "output/output.h"

#include <cstdlib>

void tb_report_found(int count)
{
    char line[64];
    send_line(format_line(line, sizeof line, "info string found %d tablebases", count));
}

void tb_report_missing(const char* name, const char* extension)
{
    char line[96];
    send_error_line(format_line(line, sizeof line, "Could not find %s%s", name, extension));
}

void tb_report_corrupt()
{
    send_error_line("Corrupted table.");
}

void tb_report_unmap_failure(int error)
{
    char line[64];
    send_error_line(format_line(line, sizeof line, "unmap failed, error code %d", error));
}

void tb_report_close_failure(int error)
{
    char line[64];
    send_error_line(format_line(line, sizeof line, "CloseHandle failed, error code %d", error));
}

void tb_report_unmeasured(const char* directory, const char* file_name, int error)
{
    char line[640];
    send_error_line(
        format_line(line, sizeof line, "fstat() failed, name = %s%s, error = %d.", directory, file_name, error));
}

void tb_fail_capacity(const char* message)
{
    send_error_line(message);
    std::exit(1);
}

void tb_fail_view(const char* directory, const char* file_name, unsigned long error)
{
    char line[640];
    send_error_line(format_line(line, sizeof line, "MapViewOfFile() failed, name = %s%s, error = %lu.", directory,
                                file_name, error));
    std::exit(1);
}
