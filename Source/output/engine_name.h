#pragma once

constexpr const char* ENGINE_NAME = "Korvel 4.50";
constexpr const char* ENGINE_AUTHOR = "Tamsin Vell";
