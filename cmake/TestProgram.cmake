# Makes a test program cheap to compile: its own code need not be fast (sanitizers make optimising it
# dear), and the framework's header, half of what a test costs, is compiled once.
function(compile_quickly program)
    target_precompile_headers(${program} PRIVATE <gtest/gtest.h>)
    if(SANITIZERS)
        target_compile_options(${program} PRIVATE -O0)
    else()
        target_compile_options(${program} PRIVATE -O1)
    endif()
    # With a precompiled header gcc 12 takes joining strings for an overrun inside the library.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${program} PRIVATE -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
    endif()
endfunction()
