// Shows on a terminal how much of a long file has been read.
#ifndef KTBASE_TOOLS_PROGRESS_H
#define KTBASE_TOOLS_PROGRESS_H

#include <cstdint>
#include <string>

// One line of standard error. It is rewritten in place, and the destructor erases it.
class Progress {
public:
    explicit Progress(std::uint64_t size);  // 0: not known, as for a pipe
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void show(std::uint64_t bytes_done);

private:
    void rewrite(const std::string& line);

    std::uint64_t size_;
    bool terminal_;
    std::string shown_;
};

#endif
