// Calls of arithmetic on whole images.
#include <Basics/Arithmetic.h>

#include "operations/Operations.h"

namespace ZPA::Fuzz {

// Each core of every element type that it is exported for.
#define ZPA_OF(T, name, traits) {#name "<" #T ">", Call<name<T>>, traits},
#define ZPA_OF_ALL(name, traits)         \
    ZPA_OF(char, name, traits)           \
    ZPA_OF(unsigned char, name, traits)  \
    ZPA_OF(short, name, traits)          \
    ZPA_OF(unsigned short, name, traits) \
    ZPA_OF(int, name, traits)            \
    ZPA_OF(unsigned int, name, traits)   \
    ZPA_OF(float, name, traits | kOneInstructionSet) ZPA_OF(double, name, traits)

std::vector<Operation> const& ArithmeticOperations() {
    static std::vector<Operation> const operations = {
        {"Add", Call<Add>, kPlain},
        {"Sub", Call<Sub>, kPlain},
        {"MulP", Call<MulP>, kOneInstructionSet},
        {"DivP", Call<DivP>, kDivides},
        {"Mul", Call<Mul>, kOneInstructionSet},
        {"AddC", Call<AddC>, kPlain},
        {"SubC", Call<SubC>, kPlain},
        {"MulC", Call<MulC>, kPlain},
        {"DivC", Call<DivC>, kDivides},
        {"Abs", Call<Abs>, kPlain},
        {"ipp_add", Call<ipp_add>, kPlain},
        {"ipp_mul", Call<ipp_mul>, kOneInstructionSet},
        ZPA_OF(char, template_add, kPlain) ZPA_OF(int, template_add, kPlain)
            ZPA_OF(unsigned int, template_add, kPlain) ZPA_OF(double, template_add, kPlain)
                ZPA_OF_ALL(template_sub, kPlain) ZPA_OF_ALL(template_mulp, kPlain)
                    ZPA_OF_ALL(template_divp, kDivides) ZPA_OF_ALL(template_addc, kPlain)
                        ZPA_OF_ALL(template_subc, kPlain) ZPA_OF_ALL(template_mulpc, kPlain)
                            ZPA_OF_ALL(template_divpc, kDivides) ZPA_OF(char, template_abs, kPlain)
                                ZPA_OF(short, template_abs, kPlain) ZPA_OF(int, template_abs, kPlain)
                                    ZPA_OF(float, template_abs, kPlain | kOneInstructionSet)
                                        ZPA_OF(double, template_abs, kPlain)};
    return operations;
}

#undef ZPA_OF_ALL
#undef ZPA_OF

}  // namespace ZPA::Fuzz
