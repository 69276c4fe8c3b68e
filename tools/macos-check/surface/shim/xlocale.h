// Declarations only: the *_l functions Darwin's <xlocale.h> offers and libc++ asks for on
// __APPLE__.
#pragma once
#include <locale.h>
#include <stdlib.h>
#include <stdio.h>
#include <wchar.h>
#include <ctype.h>
#include <wctype.h>
#include <time.h>
#include <stdarg.h>
#ifdef __cplusplus
extern "C" {
#endif
double strtod_l(const char*, char**, locale_t);
float strtof_l(const char*, char**, locale_t);
long double strtold_l(const char*, char**, locale_t);
long strtol_l(const char*, char**, int, locale_t);
unsigned long strtoul_l(const char*, char**, int, locale_t);
long long strtoll_l(const char*, char**, int, locale_t);
unsigned long long strtoull_l(const char*, char**, int, locale_t);
int snprintf_l(char*, size_t, locale_t, const char*, ...);
int asprintf_l(char**, locale_t, const char*, ...);
int sscanf_l(const char*, locale_t, const char*, ...);
int vsnprintf_l(char*, size_t, locale_t, const char*, va_list);
int vasprintf_l(char**, locale_t, const char*, va_list);
struct lconv* localeconv_l(locale_t);
size_t mbsnrtowcs_l(wchar_t*, const char**, size_t, size_t, mbstate_t*, locale_t);
size_t wcsnrtombs_l(char*, const wchar_t**, size_t, size_t, mbstate_t*, locale_t);
size_t mbrtowc_l(wchar_t*, const char*, size_t, mbstate_t*, locale_t);
size_t wcrtomb_l(char*, wchar_t, mbstate_t*, locale_t);
size_t mbrlen_l(const char*, size_t, mbstate_t*, locale_t);
size_t mbsrtowcs_l(wchar_t*, const char**, size_t, mbstate_t*, locale_t);
wint_t btowc_l(int, locale_t);
int wctob_l(wint_t, locale_t);
int mbtowc_l(wchar_t*, const char*, size_t, locale_t);
int ___mb_cur_max_l(locale_t);
#define MB_CUR_MAX_L(l) (___mb_cur_max_l(l))
#ifdef __cplusplus
}
#endif
typedef unsigned int __uint32_t;
#define _CTYPE_A 0x00000100L
#define _CTYPE_C 0x00000200L
#define _CTYPE_D 0x00000400L
#define _CTYPE_L 0x00001000L
#define _CTYPE_P 0x00002000L
#define _CTYPE_S 0x00004000L
#define _CTYPE_U 0x00008000L
#define _CTYPE_X 0x00010000L
#define _CTYPE_B 0x00020000L
#define _CTYPE_R 0x00040000L
