// A Mac's types have other widths, and "long long" where this system has "long".

#include_next <bits/typesizes.h>

#define __DEV_T_TYPE int
#define __INO_T_TYPE unsigned long long
#define __MODE_T_TYPE unsigned short
#define __NLINK_T_TYPE unsigned short
#define __OFF_T_TYPE long long
#define __RLIM_T_TYPE unsigned long long
