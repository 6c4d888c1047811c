#include "tbxutl/platform/win32/kernel32/system_messages_internal.h"

#include "tbxutl/platform/windows.h"

namespace tbx::detail {
namespace {

struct Message {
  DWORD code;
  const char* text;
};

constexpr Message kMessages[] = {
    {0, "The operation completed successfully."},
    {1, "Incorrect function."},
    {2, "The system cannot find the file specified."},
    {3, "The system cannot find the path specified."},
    {4, "The system cannot open the file."},
    {5, "Access is denied."},
    {6, "The handle is invalid."},
    {8, "Not enough memory resources are available to process this command."},
    {13, "The data is invalid."},
    {14, "Not enough memory resources are available to complete this operation."},
    {15, "The system cannot find the drive specified."},
    {16, "The directory cannot be removed."},
    {17, "The system cannot move the file to a different disk drive."},
    {18, "There are no more files."},
    {19, "The media is write protected."},
    {21, "The device is not ready."},
    {25, "The drive cannot locate a specific area or track on the disk."},
    {29, "The system cannot write to the specified device."},
    {30, "The system cannot read from the specified device."},
    {31, "A device attached to the system is not functioning."},
    {32, "The process cannot access the file because it is being used by another process."},
    {33, "The process cannot access the file because another process has locked a portion of the file."},
    {38, "Reached the end of the file."},
    {39, "The disk is full."},
    {50, "The request is not supported."},
    {53, "The network path was not found."},
    {80, "The file exists."},
    {87, "The parameter is incorrect."},
    {109, "The pipe has been ended."},
    {110, "The system cannot open the device or file specified."},
    {111, "The file name is too long."},
    {112, "There is not enough space on the disk."},
    {120, "This function is not supported on this system."},
    {122, "The data area passed to a system call is too small."},
    {123, "The filename, directory name, or volume label syntax is incorrect."},
    {126, "The specified module could not be found."},
    {127, "The specified procedure could not be found."},
    {131, "An attempt was made to move the file pointer before the beginning of the file."},
    {145, "The directory is not empty."},
    {158, "The segment is already unlocked."},
    {161, "The specified path is invalid."},
    {170, "The requested resource is in use."},
    {183, "Cannot create a file when that file already exists."},
    {193, "%1 is not a valid Win32 application."},
    {203, "The system could not find the environment option that was entered."},
    {206, "The filename or extension is too long."},
    {234, "More data is available."},
    {259, "No more data is available."},
    {267, "The directory name is invalid."},
    {998, "Invalid access to memory location."},
    {1004, "Invalid flags."},
    {1009, "The configuration registry database is corrupt."},
    {1010, "The configuration registry key is invalid."},
    {1011, "The configuration registry key could not be opened."},
    {1012, "The configuration registry key could not be read."},
    {1013, "The configuration registry key could not be written."},
    {1015,
     "The registry is corrupted. The structure of one of the files containing registry data is "
     "corrupted, or the system's memory image of the file is corrupted, or the file could not be "
     "recovered because the alternate copy or log was absent or corrupted."},
    {1016,
     "An I/O operation initiated by the registry failed unrecoverably. The registry could not read "
     "in, or write out, or flush, one of the files that contain the system's image of the registry."},
    {1018, "Illegal operation attempted on a registry key that has been marked for deletion."},
    {1021, "Cannot create a stable subkey under a volatile parent key."},
    {1113, "No mapping for the Unicode character exists in the target multi-byte code page."},
    {1400, "Invalid window handle."},
    {1401, "Invalid menu handle."},
    {1460, "This operation returned because the timeout period expired."},
    {1812, "The specified image file did not contain a resource section."},
    {1813, "The specified resource type cannot be found in the image file."},
    {1814, "The specified resource name cannot be found in the image file."},
    {1815, "The specified resource language ID cannot be found in the image file."},
    {0x80004001, "Not implemented"},
    {0x80004002, "No such interface supported"},
    {0x80004003, "Invalid pointer"},
    {0x80004004, "Operation aborted"},
    {0x80004005, "Unspecified error"},
    {0x8000FFFF, "Catastrophic failure"},
};

}  // namespace

const char* SystemMessageText(DWORD code) {
  if ((code & 0xFFFF0000u) == 0x80070000u) code &= 0xFFFFu;  // HRESULT_FROM_WIN32
  for (const Message& m : kMessages) {
    if (m.code == code) return m.text;
  }
  return nullptr;
}

}  // namespace tbx::detail
