# The checked build: AddressSanitizer and UndefinedBehaviorSanitizer on every target, stopping at
# the first report, so that `./tamrik test` fails on any memory or undefined-behaviour error.
# With clang, the same build also carries libFuzzer's coverage instrumentation and the fuzz
# harnesses of the readers, so one extra build serves both.
option(TAMRIK_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(NOT TAMRIK_SANITIZE)
    return()
endif()

# Light optimisation and line tables only: a quicker build than full debug information, and
# reports still name file and line. Assertions stay on.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(CMAKE_CXX_FLAGS_DEBUG "-O1 -gline-tables-only")
else()
    set(CMAKE_CXX_FLAGS_DEBUG "-O1 -g1")
endif()
set(TAMRIK_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
add_compile_options(${TAMRIK_SANITIZE_FLAGS})
add_link_options(${TAMRIK_SANITIZE_FLAGS})

if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(TAMRIK_FUZZ ON)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
