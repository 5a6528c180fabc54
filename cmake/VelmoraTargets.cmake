# Flags that every target of the project shares, and the two ways to make one.

add_library(velmora_flags INTERFACE)
target_compile_options(velmora_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
# GCC 12 takes a literal + std::string for overlapping copies when it optimises fully (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(velmora_flags INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
target_include_directories(velmora_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(velmora_flags INTERFACE
    VELMORA_VERSION="${PROJECT_VERSION}" $<$<BOOL:${VELMORA_ASSERTIONS}>:VELMORA_ASSERTIONS>)
if(VELMORA_SANITIZE)
    target_compile_options(velmora_flags INTERFACE -fsanitize=${VELMORA_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(velmora_flags INTERFACE -fsanitize=${VELMORA_SANITIZE})
    if(VELMORA_SANITIZE STREQUAL "thread")
        # The queue between threads uses fences, which this sanitizer cannot follow.
        target_compile_options(velmora_flags INTERFACE -Wno-tsan)
    endif()
endif()
if(VELMORA_COVERAGE)
    target_compile_options(velmora_flags INTERFACE --coverage)
    target_link_options(velmora_flags INTERFACE --coverage)
endif()

# Plain loops over samples become vector code: lrintf must not set errno, and no sum depends on the order of traps.
set(VELMORA_SAMPLE_LOOPS -O3 -fno-math-errno -fno-trapping-math)

# velmora_objects(NAME SOURCES ... LINK ...): the objects of one folder, to be linked into one or more libraries.
function(velmora_objects name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} OBJECT ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC velmora_flags ${ARG_LINK})
endfunction()

# velmora_test(NAME LABEL label [ALONE] SOURCES ... LINK ...): one GoogleTest program; each of its tests becomes a CTest
# test, which with ALONE runs beside no other. The target LABEL_programs builds all programs of a label.
function(velmora_test name)
    cmake_parse_arguments(ARG "ALONE" "LABEL;TIMEOUT" "SOURCES;LINK" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE velmora_flags GTest::gtest GTest::gmock GTest::gtest_main ${ARG_LINK})
    if(NOT TARGET ${ARG_LABEL}_programs)
        add_custom_target(${ARG_LABEL}_programs)
    endif()
    add_dependencies(${ARG_LABEL}_programs ${name})
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT ${ARG_TIMEOUT} RUN_SERIAL ${ARG_ALONE})
endfunction()
