#pragma once

#include <string>

/// Compares `text` with the file tests/golden/`name`, byte for byte. With VOSTRAND_ACCEPT_GOLDEN set in the
/// environment the file is written instead (scripts/accept-golden.sh).
void ExpectGolden(const std::string& text, const std::string& name);
