#pragma once

#include <string>

// Looks at a shared library before the loader does: the loader maps what the file's headers promise, and a file that
// holds less, such as one that was copied half, ends the process by SIGBUS.
//
// Checked  A regular file; the ELF header of a shared object for this machine; every segment within the file. Not the
//          segments' content: loading a library means running its code.
// Errors   Returns what is wrong as the end of a sentence that begins with the file's name; empty when nothing is.
//          Throws std::bad_alloc only.

// For an open file, whose offset is left alone.
std::string VokFindFaultOfLibrary(int file);
