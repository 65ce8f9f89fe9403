#include "tools/offline_tools.h"

#include "output/output.h"

namespace
{

void not_built(const char* tool, const char* file)
{
    char line[300];
    send_line(format_line(line, sizeof line, "%s is not part of this version (file %.200s untouched)", tool, file));
}

} // namespace

double make_tune_file(const char* file)
{
    not_built("tuning-data generation", file);
    return 0.0;
}
