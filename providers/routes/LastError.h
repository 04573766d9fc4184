#pragma once

#include <LastErrorExport.h>

/// The last-error text, kept for each thread.
extern "C" {

/// The error of the calling thread's last operation, "" for success. The text is valid until the thread's next
/// operation.
LAST_ERROR_API char const* VlInterfaceGetLastError() noexcept;

/// For providers: "" at the start of an operation, the reason when it fails. Very long texts are cut.
LAST_ERROR_API void VlInterfaceSetLastError(char const* text) noexcept;
}
