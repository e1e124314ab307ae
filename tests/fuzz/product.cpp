// Montgomery products of drawn numbers.
#include <fuzzer/FuzzedDataProvider.h>

#include "../longarith/longarith_model.h"

namespace {

Limbs draw_number(FuzzedDataProvider& input, std::size_t limbs) {
    constexpr unsigned short kExtremes[] = {0, 1, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF};
    Limbs number(limbs, input.PickValueInArray(kExtremes));
    for (unsigned short& limb : number)
        if (input.ConsumeBool()) limb = input.ConsumeIntegral<unsigned short>();
    return number;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto limbs = input.ConsumeIntegralInRange<std::size_t>(1, 32);
    const Limbs a = draw_number(input, limbs);
    const Limbs b = input.ConsumeBool() ? a : draw_number(input, limbs);
    Limbs m = draw_number(input, limbs);
    m[0] |= 1;
    check_product(a, b, m);
    return 0;
}
