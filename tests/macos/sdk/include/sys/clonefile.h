#pragma once

extern "C" int clonefile(const char* from, const char* to, int flags);
