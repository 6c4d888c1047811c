#pragma once
// Multibyte string functions of the C run-time library for the single-byte
// ANSI code page. As in the run-time library's default "C" locale, case
// mapping and case-blind comparison touch the ASCII letters only.

#include "tbxutl/export.h"

extern "C" {
TBXUTL_FUNC unsigned char* _mbsupr(unsigned char* str);
TBXUTL_FUNC unsigned char* _mbslwr(unsigned char* str);
// The difference of the first differing characters after folding ASCII
// letters to lower case; 0 when equal.
TBXUTL_FUNC int _mbsicmp(const unsigned char* a, const unsigned char* b);
}
