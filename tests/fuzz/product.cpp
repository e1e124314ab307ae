// Montgomery products of drawn numbers.
#include "../longarith/longarith_model.h"
#include "fuzz.h"

namespace {

// All ones, nearly all ones, nearly all zeros or random limbs.
Limbs draw_number(Input& input, std::size_t limbs) {
    Limbs number(limbs);
    const unsigned kind = input.byte() % 4;
    for (unsigned short& limb : number) {
        limb = static_cast<unsigned short>(input.byte() << 8 | input.byte());
        if (kind == 0 || (kind < 3 && limb % 8 != 0)) limb = kind < 2 ? 0xFFFF : 0;
    }
    return number;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t limbs = 1 + input.byte() % 32;
    const Limbs a = draw_number(input, limbs);
    const bool square = input.byte() % 4 == 0;
    const Limbs b = square ? a : draw_number(input, limbs);
    Limbs m = draw_number(input, limbs);
    m[0] |= 1;
    check_product(a, b, m);
    return 0;
}
