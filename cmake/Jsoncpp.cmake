# jsoncpp, under the name PkgConfig::JSONCPP wherever it comes from: the system's library, or built here
# from the same version's source, where its code must be instrumented or linked in.
option(JSONCPP_FROM_SOURCE "Build jsoncpp from Debian's source package, with this project's flags" OFF)

if(NOT JSONCPP_FROM_SOURCE)
    pkg_check_modules(JSONCPP REQUIRED IMPORTED_TARGET jsoncpp)
    return()
endif()

set(JSONCPP_SOURCE ${PROJECT_SOURCE_DIR}/build/jsoncpp-source)
if(NOT EXISTS ${JSONCPP_SOURCE})
    message(FATAL_ERROR "There is no ${JSONCPP_SOURCE}: scripts/bootstrap jsoncpp fetches it.")
endif()
add_library(
    jsoncpp-from-source STATIC
    ${JSONCPP_SOURCE}/src/lib_json/json_reader.cpp ${JSONCPP_SOURCE}/src/lib_json/json_value.cpp
    ${JSONCPP_SOURCE}/src/lib_json/json_writer.cpp)
target_include_directories(jsoncpp-from-source SYSTEM PUBLIC ${JSONCPP_SOURCE}/include)
# Its warnings are its authors' business.
target_compile_options(jsoncpp-from-source PRIVATE -w)
target_link_libraries(jsoncpp-from-source PRIVATE hardening)
add_library(PkgConfig::JSONCPP ALIAS jsoncpp-from-source)
