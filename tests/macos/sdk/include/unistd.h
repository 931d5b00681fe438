#pragma once

#include_next <unistd.h>

extern "C" char* mkdtemp(char*);
extern "C" int mkostemp(char*, int);
