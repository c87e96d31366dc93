#pragma once

/// Ends the program, which the fuzzer takes for a finding, unless `holds`.
void require(bool holds, const char* what);
