// System calls and allocations that fail.
#include <malloc.h>

#include "fixture.h"

namespace {

enum Repeat { kOnce, kAlways };

struct Fault {
    Outcome (*operation)();
    const char* call;  // fails with EINTR: an interrupted call is not repeated
    int nth;           // the first call of this name that fails, counted from 1
    Repeat repeat;
    int result;
    int error;
    Lines lines;
};

Outcome enumerate_texts() {
    calls.listing = {".", "a.txt", "l.txt", "..", "b.txt", "c.dat"};
    return enumerate("*.txt");
}

Outcome create_chain() {
    Outcome outcome = {KtMakePath("p\\q\\r"), errno, {}};
    for (const char* path : {"p", "p\\q", "p\\q\\r"})
        if (rmdir(path) == 0) outcome.lines.emplace_back(path);
    return outcome;
}

Outcome convert_time() {
    KtLocalDate date;
    date.tm_year = 999;
    const bool converted = KtTimeToLocalDate(0, &date) != nullptr;
    return {converted ? 0 : -1, errno, {std::to_string(date.tm_year)}};
}

Outcome outcome_of(int result) {
    return {result, errno, {}};
}

const char* const kFile = ".//a.txt 10 81a4 81a4 0 0";
const char* const kLink = ".//l.txt 10 a1ff 81a4 1 0";
const char* const kLast = ".//b.txt 10 81a4 81a4 0 0";
const char* const kLinkNotQueried = ".//l.txt -1 ffffffff ffffffff 0 4";
const char* const kLinkNotFollowed = ".//l.txt 5 a1ff a1ff 1 4";
const char* const kNotNamed = "? -1 ffffffff ffffffff 0 12";
const Lines kAll = {kFile, kLink, kLast};

const Fault kFaults[] = {
    {enumerate_texts, "strdup", 1, kOnce, -1, ENOMEM, {}},
    {enumerate_texts, "new", 1, kOnce, -1, ENOMEM, {}},
    {enumerate_texts, "new[]", 1, kOnce, -1, ENOMEM, {}},
    {enumerate_texts, "new[]", 2, kOnce, -1, ENOMEM, {}},
    {enumerate_texts, "new[]", 3, kOnce, 0, kUntouched, {kNotNamed, kLink, kLast}},
    {enumerate_texts, "new[]", 3, kAlways, 0, kUntouched, {kNotNamed, kNotNamed, kNotNamed}},
    {enumerate_texts, "setlocale", 1, kOnce, 0, kUntouched, kAll},  // the query
    {enumerate_texts, "setlocale", 2, kOnce, 0, kUntouched, kAll},  // the change to "C"
    {enumerate_texts, "setlocale", 3, kOnce, 0, kUntouched, kAll},  // the first restoration
    {enumerate_texts, "opendir", 1, kOnce, -1, EINTR, {}},
    {enumerate_texts, "readdir64", 1, kOnce, -1, EINTR, {}},
    {enumerate_texts, "readdir64", 3, kOnce, 0, EINTR, {kFile}},
    {enumerate_texts, "readdir64", 5, kOnce, 0, EINTR, {kFile, kLink}},
    {enumerate_texts, "readdir64", 7, kOnce, 0, EINTR, kAll},
    {enumerate_texts, "closedir", 1, kOnce, 0, kUntouched, kAll},
    {enumerate_texts, "lstat64", 2, kOnce, 0, kUntouched, {kFile, kLinkNotQueried, kLast}},
    {enumerate_texts, "stat64", 1, kOnce, 0, kUntouched, {kFile, kLinkNotFollowed, kLast}},
    {create_chain, "strdup", 1, kOnce, -1, EINTR, {}},
    {create_chain, "mkdir", 1, kOnce, -1, EINTR, {}},
    {create_chain, "mkdir", 2, kOnce, -1, EINTR, {"p"}},
    {create_chain, "mkdir", 3, kOnce, -1, EINTR, {"p", "p\\q"}},
    {[] { return outcome_of(KtOpenFile("a.txt", 0, 0, 0)); }, "open", 1, kOnce, -1, EINTR, {}},
    {[] { return outcome_of(KtCloseFile(dup(0))); }, "close", 1, kOnce, -1, EINTR, {}},
    {[] { return outcome_of(KtReadFile(0, nullptr, 0)); }, "read", 1, kOnce, -1, EINTR, {}},
    {[] { return outcome_of(KtWriteFile(1, nullptr, 0)); }, "write", 1, kOnce, -1, EINTR, {}},
    {[] { return outcome_of(KtSleep(1)); }, "usleep", 1, kOnce, -1, EINTR, {}},
    {convert_time, "localtime", 1, kOnce, -1, EINTR, {"999"}}};

TEST_F(Platform, a_fault_has_its_outcome_without_a_leak) {
    constexpr int kRuns = 100;  // A leak of 16 bytes a run exceeds the noise.
    for (const char* path : {"a.txt", "b.txt"}) write(path);
    fs::create_symlink("a.txt", "l.txt");
    for (const Fault& fault : kFaults) {
        SCOPED_TRACE(testing::Message() << fault.call << ' ' << fault.nth << ' ' << fault.repeat);
        const auto run = [&fault] {
            calls = {fault.call, fault.nth, fault.repeat == kAlways, EINTR};
            return fault.operation();
        };
        const Outcome outcome = run();
        EXPECT_GE(calls.made[fault.call], fault.nth) << "the fault is not reached";
        EXPECT_EQ(outcome.result, fault.result);
        EXPECT_EQ(outcome.error, fault.error);
        EXPECT_EQ(outcome.lines, fault.lines);
        const auto in_use = mallinfo2().uordblks;
        for (int i = 0; i < kRuns; ++i) run();
        EXPECT_LT(mallinfo2().uordblks, in_use + kRuns * 16);
        expect_all_released();
    }
}

TEST_F(Platform, a_name_without_memory_is_built_when_there_is_memory) {
    write("a");
    calls = {"new[]", 3, false, EINTR};
    const Enumeration enumeration("a");
    EXPECT_EQ(enumeration.found->lastName, nullptr);
    EXPECT_STREQ(enumeration.found->getLastName(), ".//a");
    EXPECT_EQ(enumeration.found->setLastName(), 1);
    EXPECT_EQ(enumeration.next(), -1);
}

}  // namespace
