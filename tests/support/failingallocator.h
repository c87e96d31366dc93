#pragma once

/// Lets one allocation of the program fail, whoever asks for it: a library's too. Under a sanitizer
/// with an allocator of its own only operator new fails.
///
/// To be linked into a program that asks for it; allocations of other threads always succeed.
namespace failing {

/// The allocation after `granted` more fails, and no other.
void arm(int granted);
/// All allocations succeed again. Whether one has failed since arm().
bool disarm();

} // namespace failing
