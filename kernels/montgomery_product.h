// The variants of the Montgomery product.
#ifndef KTBASE_KERNELS_MONTGOMERY_PRODUCT_H
#define KTBASE_KERNELS_MONTGOMERY_PRODUCT_H

#include "kernels/kernels.h"

MontgomeryProduct montgomery_product_plain;  // the reference for the others
MontgomeryProduct montgomery_product_sse2;
MontgomeryProduct montgomery_product_avx2;

#endif
