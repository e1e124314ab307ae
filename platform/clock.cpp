// The clock, local dates, sleep, the conversion of a number, and the copy of a text.
#include <ktbase/platform.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

// The strtoul of ISO C99. From glibc 2.38 on, <cstdlib> redirects strtoul to a function that
// also accepts the prefix "0b". Older systems do not have that function.
extern "C" unsigned long iso_c99_strtoul(const char* text, char** end, int base) noexcept
    __asm__("strtoul");

static_assert(sizeof(std::time_t) == 4);
static_assert(sizeof(KtLocalDate) == 44);
static_assert(offsetof(KtLocalDate, tm_gmtoff) == 36 && offsetof(KtLocalDate, tm_zone) == 40);

std::int32_t starttime = 0;

namespace {
constexpr unsigned kMicrosecondsPerMillisecond = 1000;
}  // namespace

std::int32_t KtGetTime() {
    const std::int32_t pinned = starttime;
    return pinned != 0 ? pinned : std::time(nullptr);
}

KtLocalDate* KtTimeToLocalDate(std::int32_t time, KtLocalDate* date) {
    if (date == nullptr) return nullptr;
    const std::time_t seconds = time;
    const KtLocalDate* const shared = std::localtime(&seconds);
    if (shared == nullptr) return nullptr;
    *date = *shared;
    return date;
}

std::int32_t KtLocalDateToTime(KtLocalDate* date) {
    return date == nullptr ? 0 : std::mktime(date);
}

int KtSleep(unsigned milliseconds) {
    return usleep(milliseconds * kMicrosecondsPerMillisecond);
}

unsigned long KtStrtoul(const char* text, char** end, int base) {
    return iso_c99_strtoul(text, end, base);
}

char* CopyTextString(char* destination, const char* source) {
    return std::strcpy(destination, source);
}
