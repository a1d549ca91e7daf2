# How everything here is compiled and linked: `warnings` and `hardening` are linked by every target of this project,
# most of them through the library below it.
option(WARNINGS_AS_ERRORS "Stop at the first compiler warning" OFF)
option(HARDENING "Fortified libc calls, stack protector, PIE, read-only relocations" OFF)
option(SMALL "Optimise across files and drop what nothing calls; with the build type MinSizeRel" OFF)
option(STATIC_LIBRARIES "Link libstdc++ in" OFF)
option(COVERAGE "Count the lines and branches of the service that run, for gcovr" OFF)
set(SANITIZERS "" CACHE STRING "Value for -fsanitize=, empty for none")

add_library(warnings INTERFACE)
target_compile_options(
    warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Wold-style-cast -Wcast-align -Woverloaded-virtual -Wnull-dereference -Wdouble-promotion
    -Wformat=2 -Wunused -Wextra-semi)
if(NOT CMAKE_UNITY_BUILD)
    # Files that are compiled as one hide each other's names, as those of tests are, in batches.
    target_compile_options(
        warnings INTERFACE $<$<NOT:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD_BATCH_SIZE>>>:-Wshadow>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(warnings INTERFACE -Wduplicated-cond -Wduplicated-branches -Wlogical-op)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Who holds which lock, from the annotations of base/CheckedMutex.h; "beta" adds the order of locks.
    target_compile_options(warnings INTERFACE -Wthread-safety -Wthread-safety-beta)
endif()
if(WARNINGS_AS_ERRORS)
    target_compile_options(warnings INTERFACE -Werror)
endif()

add_library(hardening INTERFACE)
# In every build type: an empty handler pointer must end the service at once (see PacketsHandler.cpp).
target_compile_definitions(hardening INTERFACE _GLIBCXX_ASSERTIONS)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(HARDENING)
    include(CheckPIESupported)
    check_pie_supported()
    target_compile_options(hardening INTERFACE -fstack-protector-strong -fstack-clash-protection)
    target_compile_definitions(hardening INTERFACE $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
    target_link_options(hardening INTERFACE -Wl,-z,relro -Wl,-z,now)
endif()

# What follows is a whole program's matter, libraries that are built here included: it stands before the flags of
# any target, which may take parts of it back.
if(SMALL)
    # Each function and variable in a section of its own, which the linker can leave out alone; LTO sees
    # across files what else nobody calls, or what is smaller in the place of its call.
    set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
    string(APPEND CMAKE_CXX_FLAGS " -ffunction-sections -fdata-sections")
    string(APPEND CMAKE_EXE_LINKER_FLAGS " -Wl,--gc-sections")
endif()

if(STATIC_LIBRARIES)
    include(CheckLinkerFlag)
    # libgcc stays shared: libc's own code throws through it, too.
    string(APPEND CMAKE_EXE_LINKER_FLAGS " -static-libstdc++")
    # The tables of libstdc++ hold 2000 addresses for the loader to adjust: 400 bytes instead of 50 KB.
    # glibc knows the short form from 2.36 on.
    check_linker_flag(CXX -Wl,-z,pack-relative-relocs HAS_SHORT_RELOCATIONS)
    if(HAS_SHORT_RELOCATIONS)
        string(APPEND CMAKE_EXE_LINKER_FLAGS " -Wl,-z,pack-relative-relocs")
    endif()
endif()

if(SANITIZERS)
    # -O1: sanitized programs run in acceptable time; frame pointers and lines: reports with whole stacks.
    string(APPEND CMAKE_CXX_FLAGS_DEBUG
           " -fsanitize=${SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1")
    if(SANITIZERS MATCHES "undefined")
        # This check opens a pipe, and takes every object for a wild one where tests leave no descriptor.
        string(APPEND CMAKE_CXX_FLAGS_DEBUG " -fno-sanitize=vptr")
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # gcc loses track of what <regex> initialises once it is instrumented.
        target_compile_options(warnings INTERFACE -Wno-maybe-uninitialized)
    endif()
    # The thread sanitizer does not follow fences; gcc says so for every atomic in the library.
    if(SANITIZERS STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(warnings INTERFACE -Wno-tsan)
    endif()
endif()

# Where files are compiled as one, all of a target are.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)

# Compiles a target's files as one where the build type is not for work on a single file: the headers that its files
# share cost more than the files themselves. Its code need not be fast: what a package holds is small, and where
# sanitizers make optimising dear nothing is optimised.
function(compile_together target)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
    endif()
    if(SANITIZERS AND NOT SANITIZERS MATCHES "fuzzer")
        target_compile_options(${target} PRIVATE -O0)
        if(SANITIZERS MATCHES "undefined")
            # A check at each pointer makes half of the compilation; the address sanitizer sees most of what they see.
            target_compile_options(${target} PRIVATE -fno-sanitize=null,alignment,object-size)
        endif()
    elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${target} PRIVATE -Os)
    endif()
endfunction()

# Sources whose names in unnamed namespaces clash with their neighbours' where several are compiled as one.
function(compile_alone)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
