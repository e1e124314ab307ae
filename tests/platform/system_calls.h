// Replacements of the system calls and allocations of the platform layer. They count each call,
// report it to an observer, and fail on request.
#ifndef KTBASE_TESTS_PLATFORM_SYSTEM_CALLS_H
#define KTBASE_TESTS_PLATFORM_SYSTEM_CALLS_H

#include <functional>
#include <map>
#include <string>
#include <vector>

struct Calls {
    std::string failing = {};  // the name of the call that fails with `error`
    int nth = 0;               // the first call of this name that fails, counted from 1
    bool always = false;       // all later calls of this name fail, too
    int error = 0;
    std::vector<const char*> listing = {};  // the names in any directory, if not empty
    std::function<void(const std::string&)> observer = {};  // called before each call
    std::map<std::string, int> made = {};                   // calls by name
};
extern Calls calls;

#endif
