// How much of a long file has been read, on a terminal and nowhere else.
#ifndef KTBASE_TOOLS_PROGRESS_H
#define KTBASE_TOOLS_PROGRESS_H

#include <cstdint>
#include <string>

// One line of standard error, rewritten in place and gone when the object is.
class Progress {
public:
    explicit Progress(std::uint64_t size);  // 0: unknown, as a pipe's is
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
