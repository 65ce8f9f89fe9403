#include "search/search_report.h"

namespace
{

void quiet_pv_line(const SearchThread*, int, int, const Move*, int, char) {}
void quiet_status_line(int, int) {}
void quiet_current_move(Move, int) {}
void quiet_message(const char*) {}
bool never_end(bool)
{
    return false;
}

} // namespace

SearchReporter search_reporter = {quiet_pv_line, quiet_status_line, quiet_current_move, quiet_message, never_end};
