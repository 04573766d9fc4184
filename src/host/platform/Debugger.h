#pragma once

namespace cubes::platform {

bool isDebuggerAttached();
/// Stops the program as a breakpoint does; without a debugger that ends it.
void breakIntoDebugger();
/// Shows the text in the debugger's window; does nothing where debuggers have none.
void writeToDebugger(char const* text);
void writeToDebugger(wchar_t const* text);
/// The same when a debugger is attached, which only is found out where it matters.
void echoToDebugger(char const* text);
void echoToDebugger(wchar_t const* text);

}
