// What the processor offers beyond the i686 baseline, asked anew at every call.
#ifndef KTBASE_DIGEST_PROCESSOR_H
#define KTBASE_DIGEST_PROCESSOR_H

bool has_sse2();
bool has_sha();  // with SSSE3 and SSE4.1

#endif
