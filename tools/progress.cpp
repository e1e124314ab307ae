#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr int kMiBBits = 20;
constexpr std::uint64_t kLongBytes = 16 << kMiBBits;  // shorter files need no progress

}  // namespace

Progress::Progress(std::uint64_t size) : size_(size), terminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    if (!shown_.empty()) rewrite("");
}

void Progress::show(std::uint64_t bytes_done) {
    if (!terminal_ || bytes_done < kLongBytes) return;
    // The size of a pipe is not known, and a file may have grown since it was opened.
    const std::string done = bytes_done <= size_ ? std::to_string(100 * bytes_done / size_) + " %"
                                                 : std::to_string(bytes_done >> kMiBBits) + " MiB";
    rewrite("ktsign: " + done + " read");
}

void Progress::rewrite(const std::string& line) {
    if (line == shown_) return;
    // Overwrite the end of a longer line with spaces. Some terminals cannot erase a line.
    const std::size_t width = shown_.size();
    std::fprintf(stderr, "\r%-*s\r%s", static_cast<int>(width), line.c_str(), line.c_str());
    shown_ = line;
}
