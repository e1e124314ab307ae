// Prints the digest of "abc" and the versions of the headers.
#include <ktbase/digest.h>
#include <ktbase/longarith.h>
#include <ktbase/platform.h>
#include <ktbase/version.h>

#include <cstdio>

static_assert(sizeof(void*) == 4);

int main() {
    unsigned char text[] = {'a', 'b', 'c'};
    InitHash(&Hash);
    HashBuf(text, sizeof text, &Hash);
    EndHash(&Hash);
    for (const unsigned word : Hash.state) std::printf("%08x", word);
    std::printf(" %s %d.%d.%d\n", ktbase::kVersion, ktbase::kVersionMajor, ktbase::kVersionMinor,
                ktbase::kVersionPatch);
}
