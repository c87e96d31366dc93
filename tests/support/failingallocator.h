#pragma once

/// Lets one allocation of the program fail, whoever asks for it: a library's too.
///
/// To be linked into a program that asks for it. Only allocations of one side fail: of the thread
/// that asks for it, or of the others.
namespace failing {

/// Which calls may fail. Operator new asks malloc, which under a sanitizer with an allocator of its
/// own never fails.
enum class Calls { New, Malloc };
/// Whose calls may fail.
enum class Threads { Own, Others };

/// Whether malloc can be made to fail.
bool canFailMalloc();
/// The allocation after `granted` more of these calls fails, and no other. With a `library`, only
/// calls from code of the library count whose file name holds that text.
void arm(Calls calls, int granted, const char* library = nullptr);
/// The same for calls of the given threads, whatever their library.
void arm(Calls calls, int granted, Threads threads);
/// All allocations succeed again. Whether one has failed since arm().
bool disarm();

} // namespace failing
