# Warnings and sanitizers shared by every target the project builds. Kept
# out of the exported package: consumers choose their own flags.
add_library(morvelan_options INTERFACE)
target_compile_options(morvelan_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
# g++ 12 at -O3 reports overlapping copies inside std::string's operator+
# that cannot happen; later versions no longer do.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(morvelan_options INTERFACE -Wno-restrict)
endif()

if(MORVELAN_SANITIZE)
    set(sanitize_flags -fsanitize=${MORVELAN_SANITIZE} -fno-omit-frame-pointer)
    if(MORVELAN_SANITIZE MATCHES "undefined")
        list(APPEND sanitize_flags -fno-sanitize-recover=all)
    endif()
    target_compile_options(morvelan_options INTERFACE ${sanitize_flags})
    target_link_options(morvelan_options INTERFACE ${sanitize_flags})
endif()

function(morvelan_library name)
    add_library(${name} STATIC ${ARGN})
    add_library(Morvelan::${name} ALIAS ${name})
    target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:morvelan_options>)
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/Morvelan>)
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# One executable per layer; each test case is its own ctest entry, labelled
# with the executable's name unless a LABEL follows the sources. One label
# only: gtest_discover_tests splits a list property on its way to ctest.
function(morvelan_add_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "")
    if(NOT arg_LABEL)
        set(arg_LABEL ${name})
    endif()
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE morvelan_options morvelan_test_support
        GTest::gtest_main GTest::gmock)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 NO_PRETTY_TYPES
        PROPERTIES LABELS ${arg_LABEL})
endfunction()

# Fuzzing builds instrument every library for coverage and memory errors; the
# fuzz targets themselves link libFuzzer's main.
if(MORVELAN_BUILD_FUZZERS)
    target_compile_options(morvelan_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
    target_link_options(morvelan_options INTERFACE -fsanitize=address,undefined)
endif()
