# Flags that every target shares: warnings, assertions, hardening, sanitizers.
option(WARNINGS_AS_ERRORS "Stop at the first compiler warning" OFF)
option(HARDENING "Fortified libc calls, stack protector, PIE, read-only relocations" OFF)
option(SMALL "Optimise across files and drop what nothing calls; with the build type MinSizeRel" OFF)
option(STATIC_LIBRARIES "Link libstdc++ and libgcc in" OFF)
option(COVERAGE "Count the lines and branches that run, for gcovr" OFF)
set(SANITIZERS "" CACHE STRING "Value for -fsanitize=, empty for none")

add_compile_options(
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Wold-style-cast -Wcast-align -Woverloaded-virtual -Wnull-dereference -Wdouble-promotion
    -Wformat=2 -Wunused -Wextra-semi)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wduplicated-cond -Wduplicated-branches -Wlogical-op)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Who holds which lock, from the annotations of base/CheckedMutex.h; "beta" adds the order of locks.
    add_compile_options(-Wthread-safety -Wthread-safety-beta)
endif()
if(CMAKE_UNITY_BUILD)
    # Files that are compiled as one hide each other's names; the release build sees each by itself.
    add_compile_options(-Wno-shadow)
endif()
if(WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()

# In every build type: an empty handler pointer must end the service at once (see PacketsHandler.cpp).
add_compile_definitions(_GLIBCXX_ASSERTIONS)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(HARDENING)
    include(CheckPIESupported)
    check_pie_supported()
    add_compile_options(-fstack-protector-strong)
    add_compile_definitions($<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
    add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()

if(SMALL)
    # Each function and variable in a section of its own, which the linker can leave out alone; LTO sees
    # across files what else nobody calls, or what is smaller in the place of its call.
    set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
    add_compile_options(-ffunction-sections -fdata-sections)
    add_link_options(-Wl,--gc-sections)
endif()

if(STATIC_LIBRARIES)
    include(CheckLinkerFlag)
    # With jsoncpp built here, libc and libm remain, which every image has.
    add_link_options(-static-libstdc++ -static-libgcc
                     -Wl,-T,${PROJECT_SOURCE_DIR}/cmake/unused-library-code.ld)
    # The tables of libstdc++ hold 2000 addresses for the loader to adjust: 400 bytes instead of 50 KB.
    # glibc knows the short form from 2.36 on.
    check_linker_flag(CXX -Wl,-z,pack-relative-relocs HAS_SHORT_RELOCATIONS)
    if(HAS_SHORT_RELOCATIONS)
        add_link_options(-Wl,-z,pack-relative-relocs)
    endif()
endif()

if(COVERAGE)
    # Counters that threads share and processes add up; see scripts/coverage.
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

if(SANITIZERS)
    # -O1: sanitized programs run in acceptable time; frame pointers and lines: reports with whole stacks.
    add_compile_options(-fsanitize=${SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1)
    add_link_options(-fsanitize=${SANITIZERS})
    if(SANITIZERS MATCHES "undefined")
        # This check opens a pipe, and takes every object for a wild one where tests leave no descriptor.
        add_compile_options(-fno-sanitize=vptr)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # gcc loses track of what <regex> initialises once it is instrumented.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
    # The thread sanitizer does not follow fences; gcc says so for every atomic in the library.
    if(SANITIZERS STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-tsan)
    endif()
endif()

# Where files are compiled as one, all of a target are.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)

# Compiles a target's files as one where the build type is not for work on a single file: the headers that its files
# share cost more than the files themselves. Its code need not be fast where sanitizers make optimising it dear.
function(compile_together target)
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
    endif()
    if(SANITIZERS AND NOT SANITIZERS MATCHES "fuzzer")
        target_compile_options(${target} PRIVATE -O0)
    endif()
endfunction()

# Sources whose names in unnamed namespaces clash with their neighbours' where several are compiled as one.
function(compile_alone)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
