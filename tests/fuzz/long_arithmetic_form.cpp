// Makes a replay run the Montgomery product in one of its forms.
#include "form.h"
#include "montgomery_product.h"

namespace {

[[maybe_unused]] const bool chosen = [] {
    require(montgomery_product() == (processor_has("avx2")   ? montgomery_product_avx2
                                     : processor_has("sse2") ? montgomery_product_sse2
                                                             : montgomery_product_plain),
            "the processor's own form of the product");
    const std::string name = form_to_run();
    use_montgomery_product(name == "avx2"   ? montgomery_product_avx2
                           : name == "sse2" ? montgomery_product_sse2
                                            : montgomery_product_plain);
    return true;
}();

}  // namespace
