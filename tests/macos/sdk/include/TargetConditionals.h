#pragma once

#define TARGET_OS_MAC 1
