// Marks functions that the compiler builds a second time for processors with wide registers. The
// choice between the two is made by the loader of ELF files.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__ELF__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define TARN_VECTORISED __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define TARN_VECTORISED
#endif
