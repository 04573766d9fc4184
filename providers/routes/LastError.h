#pragma once

#include <LastErrorExport.h>

/// The last-error text, kept for each thread.
extern "C" {

/// What went wrong in the calling thread's last operation, "" when nothing did. The text holds
/// until the thread's next operation.
LAST_ERROR_API char const* VlInterfaceGetLastError() noexcept;

/// For providers: "" when an operation begins, the reason when it fails. Very long texts are cut.
LAST_ERROR_API void VlInterfaceSetLastError(char const* text) noexcept;
}
