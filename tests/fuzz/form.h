// The form of a service that a replay is to run: the environment's KTBASE_FORM, by the flag of the
// processor that it needs, or "plain". Without the flag the replay ends with 77, which is a skip.
#ifndef KTBASE_TESTS_FUZZ_FORM_H
#define KTBASE_TESTS_FUZZ_FORM_H

#include <fstream>
#include <sstream>

#include "fuzz.h"

// Whether the system says that the processor has the flag.
inline bool processor_has(const std::string& flag) {
    std::stringstream flags;
    flags << std::ifstream("/proc/cpuinfo").rdbuf();
    return (flags.str() + ' ').find(' ' + flag + ' ') != std::string::npos;
}

inline std::string form_to_run() {
    const std::string form = std::getenv("KTBASE_FORM");
    if (form != "plain" && !processor_has(form)) std::exit(77);
    return form;
}

#endif
