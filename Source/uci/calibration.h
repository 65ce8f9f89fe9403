// The start-up measure of the machine's speed, from which the strength
// limit maps Elo to node rates.
#pragma once

// Runs the 0.3 s measure, prints "info string et= %.3f, calibration nps= %0.0f"
// and sets the full node rate and the full-strength Elo estimate.
void calibrate_speed();
