#pragma once
// The run-time library's multibyte string functions, for the multibyte code
// page the run-time library starts with: the ANSI code page. A lead byte and
// its trail byte form one character; a lone lead byte before the terminator
// counts as a character of its own. Include "tbxutl/platform/mbstring.h".
//
// Case: _mbsupr and _mbslwr map every letter of the code page (as
// CharUpperA does); _mbsicmp, like _stricmp in the "C" locale, folds only the
// ASCII letters and answers the difference of the first unequal (lowercased)
// characters.

#include <cstddef>

#include "tbxutl/export.h"

extern "C" TBXUTL_FUNC unsigned char* _mbschr(const unsigned char* str, unsigned int c);
extern "C" TBXUTL_FUNC unsigned char* _mbsrchr(const unsigned char* str, unsigned int c);
extern "C" TBXUTL_FUNC unsigned char* _mbsstr(const unsigned char* str, const unsigned char* substr);
// Copies `count` bytes, padding with zeros after the end of `src`; a lead
// byte whose trail byte would fall outside becomes a zero.
extern "C" TBXUTL_FUNC unsigned char* _mbsnbcpy(unsigned char* dest, const unsigned char* src, std::size_t count);
extern "C" TBXUTL_FUNC int _mbsnbcmp(const unsigned char* str1, const unsigned char* str2, std::size_t count);
extern "C" TBXUTL_FUNC int _mbsicmp(const unsigned char* str1, const unsigned char* str2);
extern "C" TBXUTL_FUNC std::size_t _mbslen(const unsigned char* str);
extern "C" TBXUTL_FUNC unsigned char* _mbsinc(const unsigned char* current);
// The character before `current`, or null when `start` is not before it.
extern "C" TBXUTL_FUNC unsigned char* _mbsdec(const unsigned char* start, const unsigned char* current);
extern "C" TBXUTL_FUNC unsigned char* _mbsupr(unsigned char* str);
extern "C" TBXUTL_FUNC unsigned char* _mbslwr(unsigned char* str);
extern "C" TBXUTL_FUNC int _ismbblead(unsigned int c);
