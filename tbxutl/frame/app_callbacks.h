#pragma once
#include "tbxutl/export.h"
#include "tbxutl/platform/windows.h"

class CWinApp;

// The host application's callback record: it lends the library its
// application object. When the record is missing or pfnGetApp answers null,
// the library falls back to the framework's current application object.
struct VKDUTLAPPCB {
  CWinApp* (*pfnGetApp)();
};

// Creates the process-wide record, zero-filled, on the first call and
// returns the same record afterwards; null if it could not be allocated.
extern "C" TBXUTL_FUNC VKDUTLAPPCB* WINAPI UTLInitializeAppCallbacks();
// The record, or null when none was created.
extern "C" TBXUTL_FUNC VKDUTLAPPCB* WINAPI UTLGetAppCallbacks();
// Frees the record; later calls of UTLGetAppCallbacks answer null.
extern "C" TBXUTL_FUNC void WINAPI UTLShutdownAppCallbacks();
