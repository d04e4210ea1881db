// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/export.h>

// The machine that the program runs on. Each fact is queried at its first use and kept for the life of the process,
// separately for the narrow and the wide form. An empty result is not kept: the next call tries again. A reference to a
// non-empty text never changes, in address or text; one to an empty text stays empty. Both are valid until the process
// ends, even in destructors of static objects. Any number of threads may call at once.

namespace IO::System {

// The computer's name in lower case, on Windows at most 15 characters. Running the "app" group of global functions
// fills the narrow forms of this and of UserName at start-up.
QZL_IO_API const std::string& MachineName();
QZL_IO_API const std::wstring& MachineNameW();

// The name of the user that the process runs as, in lower case; on Windows at most 256 characters.
QZL_IO_API const std::string& UserName();
QZL_IO_API const std::wstring& UserNameW();

// The product id of the Windows installation, followed by zero bytes up to the size of the buffer that it was read
// into: `c_str()` is the id, `size()` is not its length. If the id cannot be read, the whole buffer is zeros. Empty on
// Linux.
QZL_IO_API const std::string& ProductId();
QZL_IO_API const std::wstring& ProductIdW();

// A name for the version of Windows; "unknown" for other versions and on Linux.
//
// | version | workstation        | server                   |
// |---------|--------------------|--------------------------|
// | 10.0    | "windows_10"       | "windows_server_2016"    |
// | 6.3     | "windows_8_point1" | "windows_server_2012_r2" |
// | 6.2     | "windows_8"        | "windows_server_2012"    |
// | 6.1     | "windows_7"        | "windows_server_2008_r2" |
// | 6.0     | "windows_vista"    | "windows_server_2008"    |
// | 5.2     | "windows_xp_x64"   | "windows_server_2003_r2" |
// | 5.1     | "windows_xp"       | "unknown"                |
// | 5.0     | "windows_2000"     | "unknown"                |
// | other   | "unknown"          | "unknown"                |
QZL_IO_API const std::string& WindowsVersion();
QZL_IO_API const std::wstring& WindowsVersionW();

// The serial number of the disk that holds the system, as the disk gives it, leading blanks included. If it cannot be
// queried, the text is empty and one warning is made, "eHDDInfo: obtain serialNumber failure(n)", where n is the
// system's error number.
QZL_IO_API const std::string& HDDSerialNumber();
QZL_IO_API const std::wstring& HDDSerialNumberW();

} // namespace IO::System
