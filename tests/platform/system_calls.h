// The system calls and allocations of the platform layer, counted, and failing on request: those in
// system_calls.cpp take the place of the system's.
#ifndef KTBASE_TESTS_PLATFORM_SYSTEM_CALLS_H
#define KTBASE_TESTS_PLATFORM_SYSTEM_CALLS_H

#include <map>
#include <string>
#include <vector>

struct Calls {
    std::string failing = {};  // the call of this name fails with `error`
    int use = 0;               // on this use, counted from 1,
    bool ever_after = false;   // and on all later ones
    int error = 0;
    std::vector<const char*> listing = {};  // what any directory is said to hold, if not empty
    // Gets "?path " for an lstat64, "+path " for a mkdir, "flags:mode " in hexadecimal for an open,
    // "close:" and the count of open files for a close.
    std::string* trace = nullptr;
    std::map<std::string, int> made = {};  // uses by name
};
extern Calls calls;

#endif
