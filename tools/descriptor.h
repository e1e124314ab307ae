// Owns an open file descriptor.
#ifndef KTBASE_TOOLS_DESCRIPTOR_H
#define KTBASE_TOOLS_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

class Descriptor {
public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ > STDERR_FILENO) close(fd_);
    }

    int get() const { return fd_; }

private:
    int fd_;
};

#endif
