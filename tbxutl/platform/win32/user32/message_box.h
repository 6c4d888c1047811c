#pragma once
// Message boxes and beeps for the Linux build. MessageBoxA hands the box to
// the presenter set with tbx::SetMessageBoxPresenter
// (tbxutl/platform/message_box.h); the default presenter writes the caption
// and text to standard error and answers the box's default button.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

// Buttons.
#define MB_OK 0x00000000
#define MB_OKCANCEL 0x00000001
#define MB_ABORTRETRYIGNORE 0x00000002
#define MB_YESNOCANCEL 0x00000003
#define MB_YESNO 0x00000004
#define MB_RETRYCANCEL 0x00000005
#define MB_CANCELTRYCONTINUE 0x00000006
// Icons.
#define MB_ICONHAND 0x00000010
#define MB_ICONQUESTION 0x00000020
#define MB_ICONEXCLAMATION 0x00000030
#define MB_ICONASTERISK 0x00000040
#define MB_USERICON 0x00000080
#define MB_ICONWARNING MB_ICONEXCLAMATION
#define MB_ICONERROR MB_ICONHAND
#define MB_ICONINFORMATION MB_ICONASTERISK
#define MB_ICONSTOP MB_ICONHAND
// Default button.
#define MB_DEFBUTTON1 0x00000000
#define MB_DEFBUTTON2 0x00000100
#define MB_DEFBUTTON3 0x00000200
#define MB_DEFBUTTON4 0x00000300
// Modality.
#define MB_APPLMODAL 0x00000000
#define MB_SYSTEMMODAL 0x00001000
#define MB_TASKMODAL 0x00002000
// Other options.
#define MB_HELP 0x00004000
#define MB_NOFOCUS 0x00008000
#define MB_SETFOREGROUND 0x00010000
#define MB_DEFAULT_DESKTOP_ONLY 0x00020000
#define MB_TOPMOST 0x00040000
#define MB_RIGHT 0x00080000
#define MB_RTLREADING 0x00100000
#define MB_SERVICE_NOTIFICATION 0x00200000
#define MB_SERVICE_NOTIFICATION_NT3X 0x00040000
// Masks.
#define MB_TYPEMASK 0x0000000F
#define MB_ICONMASK 0x000000F0
#define MB_DEFMASK 0x00000F00
#define MB_MODEMASK 0x00003000
#define MB_MISCMASK 0x0000C000

// Answers.
#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7
#define IDCLOSE 8
#define IDHELP 9
#define IDTRYAGAIN 10
#define IDCONTINUE 11

#define MessageBox MessageBoxA

// Shows a box through the current presenter and answers what it answers:
// the ID... of the button chosen, or 0 on failure.
extern "C" TBXUTL_FUNC int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
// Linux makes no sound; always answers TRUE.
extern "C" TBXUTL_FUNC BOOL WINAPI MessageBeep(UINT type);
