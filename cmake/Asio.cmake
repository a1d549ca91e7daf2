# Asio's own code, compiled once for all that use it.
add_library(asio STATIC ${CMAKE_CURRENT_LIST_DIR}/AsioImplementation.cpp)
# Whether Asio finds aligned_alloc hangs on what a file includes before it; memory that one file
# allocates and another frees needs one answer for all.
target_compile_definitions(
    asio PUBLIC ASIO_STANDALONE ASIO_SEPARATE_COMPILATION ASIO_NO_DEPRECATED ASIO_DISABLE_STD_ALIGNED_ALLOC)
target_link_libraries(asio PUBLIC Threads::Threads PRIVATE warnings hardening)
# gcc's flow analysis errs within the inlined code of the library, in some build types.
target_compile_options(asio PRIVATE -Wno-null-dereference)
