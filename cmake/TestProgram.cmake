# Makes a test program cheap to compile: its own code need not be fast (sanitizers make optimising it
# dear), and the framework's header, half of what a test costs, is compiled once.
function(compile_quickly program)
    target_precompile_headers(${program} PRIVATE <gtest/gtest.h>)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
        # Few large pieces, too: whoever works on one test has the debug preset.
        set_target_properties(${program} PROPERTIES UNITY_BUILD ON)
        target_compile_options(${program} PRIVATE -Wno-shadow)
    endif()
    if(SANITIZERS)
        target_compile_options(${program} PRIVATE -O0)
    else()
        target_compile_options(${program} PRIVATE -O1)
    endif()
    # With a precompiled header gcc 12 takes joining strings for an overrun or a null inside the library.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${program} PRIVATE -Wno-array-bounds -Wno-null-dereference -Wno-restrict
                                                  -Wno-stringop-overflow)
    endif()
endfunction()
