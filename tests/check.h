// Shared by the models. A model checks the library on given values, and throws if a result differs.
// Tests call a model with named values, fuzzers with values from their input.
#ifndef KTBASE_TESTS_CHECK_H
#define KTBASE_TESTS_CHECK_H

#include <stdexcept>
#include <string>
#include <vector>

// Each array has its exact size, so that AddressSanitizer reports the first byte beyond it.
using Bytes = std::vector<unsigned char>;

inline void require(bool holds, const char* what) {
    if (!holds) throw std::logic_error(what);
}

#endif
