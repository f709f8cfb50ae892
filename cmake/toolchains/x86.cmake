# How 32-bit code computes: float and double as on 64 bits, in SSE2 registers without excess precision; `long double`
# has its 80 bits either way. Callers may have aligned the stack to 4 bytes only.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
