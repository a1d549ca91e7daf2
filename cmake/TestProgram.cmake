# Makes a test program cheap to compile: its own code need not be fast, and optimising it costs more than it saves.
function(compile_quickly program)
    compile_together(${program})
    # Pieces that the cores share, and whose files do not hide each other's names.
    set_target_properties(${program} PROPERTIES UNITY_BUILD_BATCH_SIZE 12)
    target_compile_options(${program} PRIVATE -O0 -U_FORTIFY_SOURCE -Wno-shadow)
endfunction()
