// The memory of g++'s static thread library.
#pragma once

/// Frees all that the thread library of this module has taken and not given back. From then on no thread may
/// use that library.
///
/// The library keeps a record of every thread that it has met, for the next one, and one of every mutex that
/// is constructed statically, and has no call that ends it. The build gives its calls of malloc, calloc,
/// realloc, free and strdup other names, under which they arrive at the functions of this module's
/// ThreadMemory.cpp.
void FreeThreadMemory() noexcept;
