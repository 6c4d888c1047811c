#pragma once
#include "tbxutl/export.h"
#include "tbxutl/platform/windows.h"

// Fixed, untranslated strings of the suite: registry and profile names that
// applications build their paths from.
//   1 "Network\Logon"     2 "UserProfiles"
//   3 "Software\Microsoft\Windows\CurrentVersion\ProfileList"
//   4 "ProfileImagePath"  5 "\"
//   any other selector: "\Application Data"
extern "C" TBXUTL_FUNC const char* WINAPI UTLGetString(int selector);
