// Which dialect the engine speaks: 1 UCI (the default), 0 console.
#pragma once

#include <cstdint>

extern int16_t protocol_mode;
