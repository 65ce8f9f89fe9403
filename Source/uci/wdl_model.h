// Win, draw and loss chances of a search score, for interfaces that show
// them (UCI_ShowWDL).
#pragma once

struct WdlChances {
    int win, draw, loss; // permille, summing to 1000
};

// The chances of the side the score speaks for.
WdlChances wdl_of_score(int score);
