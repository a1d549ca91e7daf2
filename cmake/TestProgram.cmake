# How long a test program may take to list its tests: under an emulator on a busy machine it takes seconds.
set(LISTING_TIMEOUT_S 60)

# Makes a test program cheap to compile: its own code need not be fast, and optimising it costs more than it saves.
function(compile_quickly program)
    compile_together(${program})
    # Pieces that the cores share, and whose files do not hide each other's names.
    set_target_properties(${program} PROPERTIES UNITY_BUILD_BATCH_SIZE 12)
    target_compile_options(${program} PRIVATE -O0 -U_FORTIFY_SOURCE)
    if(SANITIZERS MATCHES "undefined")
        # Its checks are for what is tested; in the tests' own code they cost a quarter of its compilation.
        target_compile_options(${program} PRIVATE -fno-sanitize=undefined)
    endif()
endfunction()

# Sets `result` to the path by which tests start `program`: its own or, where this machine cannot run it, that of
# a script that starts it under the emulator. The process keeps the program's name, which tests look for.
function(path_to_run result program)
    set(path $<TARGET_FILE:${program}>)
    if(CMAKE_CROSSCOMPILING)
        set(script ${CMAKE_CURRENT_BINARY_DIR}/emulated/${program})
        set(emulator ${CMAKE_CURRENT_BINARY_DIR}/emulated/emulator/${program})
        file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/emulated/emulator)
        file(CREATE_LINK ${CMAKE_CROSSCOMPILING_EMULATOR} ${emulator} SYMBOLIC)
        file(GENERATE OUTPUT ${script} CONTENT "#!/bin/sh\nexec '${emulator}' '${path}' \"$@\"\n"
             FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
        set(path ${script})
    endif()
    set(${result} ${path} PARENT_SCOPE)
endfunction()

# Makes the tests of a program of unit tests known to CTest: each by its name, or, where an emulator takes longer to
# start than most of them take to run, in four parts without those of tests/emulation-limits.txt. What else
# gtest_discover_tests shall know follows.
function(discover_unit_tests program)
    if(NOT CMAKE_CROSSCOMPILING)
        gtest_discover_tests(${program} DISCOVERY_TIMEOUT ${LISTING_TIMEOUT_S} ${ARGN} PROPERTIES LABELS unit)
        return()
    endif()
    set(list ${PROJECT_SOURCE_DIR}/tests/emulation-limits.txt)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    file(STRINGS ${list} limits REGEX "^[^# ]")
    list(TRANSFORM limits REPLACE "^(service[.]|simulator[.])?([^ ]+) .*" "\\2")
    list(JOIN limits : limits)
    foreach(part RANGE 0 3)
        add_test(NAME ${program}.${part} COMMAND ${program} --gtest_filter=-${limits})
        set_tests_properties(${program}.${part} PROPERTIES
                             LABELS unit ENVIRONMENT "GTEST_TOTAL_SHARDS=4;GTEST_SHARD_INDEX=${part}")
    endforeach()
endfunction()

# Labels as timed, besides their own label, the tests of the program whose full names begin so: how fast the machine is
# decides them, and CI gives those that fail a second run. Further lists of tests, where there are any, follow.
function(label_timed program label names)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${program}-timed.cmake)
    file(WRITE ${script} "foreach(test IN LISTS ${program}_TESTS ${ARGN})
    if(test MATCHES [[^(${names})]])
        set_tests_properties(\${test} PROPERTIES LABELS \"${label};timed\")
    endif()
endforeach()
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()
