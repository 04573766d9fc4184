#pragma once

namespace cubes::platform {

bool isDebuggerAttached();
/// Stops the program like a breakpoint; ends it when no debugger is attached.
void breakIntoDebugger();
/// Shows the text in the debugger's window; does nothing where debuggers have none.
void writeToDebugger(char const* text);
void writeToDebugger(wchar_t const* text);

}
