#pragma once

// The exports of the fake libraries: EXPORTED makes a symbol visible, NAMED(name) puts its name between EXPORT_PREFIX
// and EXPORT_SUFFIX.

#ifdef _WIN32
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

#define JOINED(prefix, name, suffix) prefix##name##suffix
#define JOINED_VALUES(prefix, name, suffix) JOINED(prefix, name, suffix)
#define NAMED(name) JOINED_VALUES(EXPORT_PREFIX, name, EXPORT_SUFFIX)
