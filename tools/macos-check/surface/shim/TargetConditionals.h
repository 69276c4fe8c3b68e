#pragma once
#define TARGET_OS_MAC 1
#define TARGET_OS_OSX 1
#define TARGET_OS_IPHONE 0
#define TARGET_OS_SIMULATOR 0
#ifdef __arm64__
#define TARGET_CPU_ARM64 1
#define TARGET_CPU_X86_64 0
#else
#define TARGET_CPU_ARM64 0
#define TARGET_CPU_X86_64 1
#endif
