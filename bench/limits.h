// The chains of dependent instructions that limit the speed of the digests. They have no loads, no
// message schedule and no sums, so they compute no digest.
#ifndef KTBASE_BENCH_LIMITS_H
#define KTBASE_BENCH_LIMITS_H

// 20 dependent sha1rnds4 instructions a block. Requires a processor with SHA instructions.
void sha_round_chain(unsigned blocks);

// 64 steps a block of RFC 1321. The result of a step passes through the function, an addition, the
// rotation and another addition: 5 instructions for the functions F and I, 4 for G and H.
void md5_step_chain(unsigned blocks);

#endif
