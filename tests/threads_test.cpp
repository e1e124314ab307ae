// Calls the reentrant services on eight threads at once. ThreadSanitizer reports each data race.
#include <cstdio>
#include <thread>

#include "digest/digest_model.h"
#include "fips186_example.h"
#include "longarith/longarith_model.h"
#include "text/text_model.h"

namespace {

void use_all_services() {
    // The first service uses a kernel, so the threads also choose the kernels at the same time.
    check_product({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    check_sha(Bytes(200, 'a'), {10, 64});
    check_md5(Bytes(200, 'a'), {10, 64});
    check_windows({0x35, 0, 0x81}, 24, 5);
    Bytes key = fips186::key();
    Bytes signature = fips186::signature();
    Bytes message = {'a', 'b', 'c'};
    CheckBufferSign(message.data(), 3, key.data(), signature.data());

    check_comparisons("ab", "aC", 2);
    check_copies("abc", 2);
    check_edits(" Ab ");
    check_memory_comparisons("abc", "abD");
    check_searches("abcb", 'b');
    check_moves("abcdefgh", 1, 'x');
    check_hexadecimal_reading("0aB9");
    check_hexadecimal_writing({0, 0xAB});
    _ktpow10(5);
}

}  // namespace

int main() {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 20; ++round) use_all_services();
        });
    for (std::thread& thread : threads) thread.join();
    return 0;
}
