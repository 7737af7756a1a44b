# One helper per kind of target; every target of the project is made by one of them.

include(CheckCXXCompilerFlag)

option(TORLAN_WERROR "Warnings are errors" OFF)
option(TORLAN_SLOTS_ALONE "Every slot of a test runs in a process of its own" OFF)
option(TORLAN_PROOFS "Proofs that take minutes and a machine of their own" OFF)
option(TORLAN_BROWSER_TESTS "Tests with a browser and node of this machine" ON)
option(TORLAN_FUZZ "Fuzzers look for new inputs; needs clang and sanitizers" OFF)
set(TORLAN_SANITIZE "" CACHE STRING "Sanitizers for every target, e.g. address,undefined")

add_library(torlan_settings INTERFACE)
target_compile_features(torlan_settings INTERFACE cxx_std_20)
target_compile_definitions(torlan_settings INTERFACE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII)
target_compile_options(torlan_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
    $<$<BOOL:${TORLAN_WERROR}>:-Werror>)
target_link_options(torlan_settings INTERFACE -Wl,--as-needed)
if(TORLAN_SANITIZE)
    target_compile_options(torlan_settings INTERFACE
        -fsanitize=${TORLAN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        $<$<BOOL:${TORLAN_FUZZ}>:-fsanitize=fuzzer-no-link>)
    target_link_options(torlan_settings INTERFACE -fsanitize=${TORLAN_SANITIZE})
else()
    target_link_options(torlan_settings INTERFACE -Wl,--no-undefined)
endif()

# What else the product's own code keeps to, wherever it is compiled: it runs on 32-bit machines and
# on ones that trap on unaligned access. Its libraries can be unloaded: g++ would make inline variables
# unique in the process, and a library with one of those stays (clang makes none and has no option).
check_cxx_compiler_flag(-fno-gnu-unique TORLAN_HAS_NO_GNU_UNIQUE)
add_library(torlan_product INTERFACE)
target_compile_options(torlan_product INTERFACE -Wconversion -Wno-sign-conversion -Wcast-align
    $<$<BOOL:${TORLAN_HAS_NO_GNU_UNIQUE}>:-fno-gnu-unique>)
target_link_libraries(torlan_product INTERFACE torlan_settings)

# torlan_verify_headers(<target>): the target all_verify_interface_header_sets, which ./test builds,
# compiles each header of its file set alone.
function(torlan_verify_headers _target)
    set_target_properties(${_target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    set_property(GLOBAL APPEND PROPERTY TORLAN_VERIFIED ${_target})
endfunction()

# add_torlan_headers(<name> LINK ...): the same for the headers of this folder when no library of
# add_torlan_library has them.
function(add_torlan_headers _name)
    cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
    file(GLOB_RECURSE _headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(torlan_${_name}_headers INTERFACE)
    target_sources(torlan_${_name}_headers INTERFACE FILE_SET HEADERS
        BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR} FILES ${_headers})
    target_link_libraries(torlan_${_name}_headers INTERFACE ${arg_LINK})
    torlan_verify_headers(torlan_${_name}_headers)
endfunction()

# add_torlan_library(<name> SOURCES ... [INCLUDE_ROOT dir] [PUBLIC libs...] [PRIVATE libs...])
# One shared library a folder, alias torlan::<name>; its headers are included by their path below
# INCLUDE_ROOT, the folder above this one unless told otherwise.
function(add_torlan_library _name)
    cmake_parse_arguments(arg "" "INCLUDE_ROOT" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    if(NOT arg_INCLUDE_ROOT)
        cmake_path(GET CMAKE_CURRENT_SOURCE_DIR PARENT_PATH arg_INCLUDE_ROOT)
    endif()
    add_library(torlan_${_name} SHARED ${arg_SOURCES})
    add_library(torlan::${_name} ALIAS torlan_${_name})
    file(GLOB_RECURSE _headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    target_sources(torlan_${_name} PUBLIC FILE_SET HEADERS
        BASE_DIRS ${arg_INCLUDE_ROOT} FILES ${_headers})
    # The settings come first: what a library's interface takes back of them must come later.
    target_link_libraries(torlan_${_name}
        PRIVATE torlan_product PUBLIC Qt6::Core ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
    torlan_verify_headers(torlan_${_name})
endfunction()

# add_torlan_driver(<library name> SOURCES ... LINK ...)
# A loadable driver; lands in lib/drivers, where the host scans for it. Packagers know a library by
# the shared object name, which CMake gives to no module.
function(add_torlan_driver _name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_library(${_name} MODULE ${arg_SOURCES})
    target_link_libraries(${_name} PRIVATE torlan_product ${arg_LINK})
    target_link_options(${_name} PRIVATE LINKER:-soname,$<TARGET_FILE_NAME:${_name}>)
    set_target_properties(${_name} PROPERTIES
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/drivers
        BUILD_RPATH_USE_ORIGIN ON)
endfunction()

# What runs inside the broker takes back what the broker does not go by: it has what is missing,
# and it has no sanitizers.
add_library(torlan_inside_broker INTERFACE)
target_link_options(torlan_inside_broker INTERFACE -Wl,-z,undefs)
if(TORLAN_SANITIZE)
    target_compile_options(torlan_inside_broker INTERFACE -fno-sanitize=all)
    target_link_options(torlan_inside_broker INTERFACE -fno-sanitize=all)
endif()

# torlan_broker_plugin_here(<target> LINK <libraries' names> SOURCES ...)
# In a build for another machine: tests start this machine's own broker, so this machine's own
# compiler makes what that loads, and the other machine's plugin steps aside.
function(torlan_broker_plugin_here _target)
    cmake_parse_arguments(arg "" "" "LINK;SOURCES" ${ARGN})
    set(_library ${CMAKE_BINARY_DIR}/lib/lib${_target}.so)
    set_target_properties(${_target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/target)
    list(TRANSFORM arg_LINK PREPEND -l)
    add_custom_command(OUTPUT ${_library}
        COMMAND c++ -std=c++20 -O1 -shared -fPIC -pthread -I${CMAKE_SOURCE_DIR}
                -I${CMAKE_SOURCE_DIR}/host -o ${_library}
                ${arg_SOURCES} ${arg_LINK}
        DEPENDS ${arg_SOURCES}
        WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
        COMMENT "Making this machine's own ${_target}")
    add_custom_target(${_target}_here DEPENDS ${_library})
    add_dependencies(${_target} ${_target}_here)
endfunction()

# add_torlan_broker_plugin(<name> RULES ... ENTRY ... LINK ... HERE ...)
# A plugin of the broker, lib/libtorlan_<name>.so, without Qt; torlan::<name>_rules is the part that
# needs no broker, for tests. HERE: the libraries as this machine's compiler calls them.
function(add_torlan_broker_plugin _name)
    cmake_parse_arguments(arg "" "" "RULES;ENTRY;LINK;HERE" ${ARGN})
    add_library(torlan_${_name}_rules STATIC ${arg_RULES})
    add_library(torlan::${_name}_rules ALIAS torlan_${_name}_rules)
    add_library(torlan_${_name} MODULE ${arg_RULES} ${arg_ENTRY})
    file(GLOB _headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    foreach(_target torlan_${_name}_rules torlan_${_name})
        target_sources(${_target} PUBLIC FILE_SET HEADERS
            BASE_DIRS ${CMAKE_SOURCE_DIR}/host FILES ${_headers})
        target_link_libraries(${_target} PRIVATE torlan_product PUBLIC ${arg_LINK})
        # base/, the headers that every room may use.
        target_include_directories(${_target} PUBLIC ${CMAKE_SOURCE_DIR})
        set_target_properties(${_target} PROPERTIES
            AUTOMOC OFF CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    endforeach()
    target_link_libraries(torlan_${_name} PRIVATE torlan_inside_broker)
    if(CMAKE_CROSSCOMPILING)
        torlan_broker_plugin_here(torlan_${_name}
            LINK ${arg_HERE} SOURCES ${arg_RULES} ${arg_ENTRY})
    endif()
    torlan_verify_headers(torlan_${_name}_rules)
endfunction()

# add_torlan_program(<name> SOURCES ... LINK ...)
function(add_torlan_program _name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${_name} ${arg_SOURCES})
    target_link_libraries(${_name} PRIVATE torlan_settings ${arg_LINK})
    set_target_properties(${_name} PROPERTIES BUILD_RPATH_USE_ORIGIN ON)
endfunction()

# torlan_start_path(<variable> <target>): what a test starts to run the program. That is the program
# itself or, in a build for another machine, a script that hands it to the emulator.
function(torlan_start_path _variable _target)
    set(_path $<TARGET_FILE:${_target}>)
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" _emulator)
        set(_script ${CMAKE_BINARY_DIR}/emulated/${_target})
        # Several tests may start one program.
        get_property(_written GLOBAL PROPERTY torlan_start_script_${_target})
        if(NOT _written)
            set_property(GLOBAL PROPERTY torlan_start_script_${_target} TRUE)
            file(GENERATE OUTPUT ${_script}
                CONTENT "#!/bin/sh\nexec '${_emulator}' '${_path}' \"$@\"\n"
                FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                 WORLD_READ WORLD_EXECUTE)
        endif()
        set(_path ${_script})
    endif()
    set(${_variable} ${_path} PARENT_SCOPE)
endfunction()

# Qt's headers as tests include them, compiled once a configuration and taken by every test. g++ takes
# them only with its options unchanged and with no other value of a macro that they look at, so these
# go: the folder of each test (for QFINDTESTDATA; tests are told paths by their CMakeLists.txt) and
# that Qt Network is linked (for failure texts of four of its types).
function(add_torlan_precompiled)
    add_library(torlan_test_settings INTERFACE)
    target_compile_options(torlan_test_settings INTERFACE
        -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR -UQT_NETWORK_LIB
        $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
    target_link_libraries(torlan_test_settings INTERFACE torlan_settings Qt6::Test)
    add_executable(torlan_precompiled EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/tests/precompiled/main.cpp)
    target_link_libraries(torlan_precompiled PRIVATE torlan_test_settings)
    target_precompile_headers(torlan_precompiled
        PRIVATE ${CMAKE_SOURCE_DIR}/tests/precompiled/headers.h)
    set_target_properties(torlan_precompiled PROPERTIES
        AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
endfunction()

# add_torlan_test(<path of tst_x.cpp below tests/> [LINK ...] [LABELS ...] [SOURCES ...] [SERIAL] [PROOF])
# One class, one file, one executable. The test's name is its path without "tst_" and ".cpp". PROOF: it
# takes minutes; always built, so that it does not rot, and run with TORLAN_PROOFS only.
function(add_torlan_test _source)
    cmake_parse_arguments(arg "SERIAL;PROOF" "" "LINK;LABELS;SOURCES;ENVIRONMENT" ${ARGN})
    cmake_path(GET _source STEM _stem)
    cmake_path(GET _source PARENT_PATH _folder)
    string(REPLACE "/" "-" _prefix "${_folder}")
    string(REGEX REPLACE "^tst_" "" _class "${_stem}")
    set(_target ${_prefix}-${_class})
    add_executable(${_target} ${CMAKE_SOURCE_DIR}/tests/${_source} ${arg_SOURCES})
    target_link_libraries(${_target} PRIVATE torlan_test_settings ${arg_LINK} torlan_kit)
    target_precompile_headers(${_target} REUSE_FROM torlan_precompiled)
    # Nearly empty: taking the headers would cost it more than it has.
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${_target}_autogen/mocs_compilation.cpp
        PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    set_target_properties(${_target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests BUILD_RPATH_USE_ORIGIN ON)
    if(arg_PROOF AND NOT TORLAN_PROOFS)
        return()
    endif()
    set(_command ${_target})
    if(TORLAN_SLOTS_ALONE)
        set(_command ${CMAKE_SOURCE_DIR}/tests/one-by-one $<TARGET_FILE:${_target}>)
    endif()
    add_test(NAME ${_folder}/${_class} COMMAND ${_command})
    string(REGEX REPLACE "/.*" "" _kind "${_folder}")
    set_tests_properties(${_folder}/${_class} PROPERTIES
        LABELS "${_kind};${arg_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;${arg_ENVIRONMENT}"
        RUN_SERIAL ${arg_SERIAL})
endfunction()

function(torlan_built_for_proofs _target)
    if(NOT TARGET proofs)
        add_custom_target(proofs)
    endif()
    add_dependencies(proofs ${_target})
endfunction()

# add_torlan_proof(<target of a test> <seconds>)
# With TORLAN_PROOFS: the same program again, alone and with TORLAN_PROOF set, which asks for its long
# form, as the test proof/<target>; label proof. The target proofs builds them all.
function(add_torlan_proof _target _seconds)
    if(NOT TORLAN_PROOFS)
        return()
    endif()
    add_test(NAME proof/${_target} COMMAND ${_target})
    set_tests_properties(proof/${_target} PROPERTIES
        LABELS proof RUN_SERIAL ON TIMEOUT ${_seconds}
        ENVIRONMENT "TORLAN_PROOF=1;QTEST_FUNCTION_TIMEOUT=${_seconds}000;QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
    torlan_built_for_proofs(${_target})
endfunction()

# add_torlan_fuzzer(<name> LINK ...)
# tests/fuzz/fuzz_<name>.cpp with the inputs in tests/fuzz/corpus/<name>; see tests/fuzz/README.md.
function(add_torlan_fuzzer _name)
    cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
    set(_target fuzz-${_name})
    add_executable(${_target} fuzz_${_name}.cpp)
    target_link_libraries(${_target} PRIVATE torlan_settings ${arg_LINK})
    target_include_directories(${_target} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    set_target_properties(${_target} PROPERTIES
        AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests BUILD_RPATH_USE_ORIGIN ON)
    if(TORLAN_FUZZ)
        target_link_options(${_target} PRIVATE -fsanitize=fuzzer)
        return()
    endif()
    target_sources(${_target} PRIVATE replay.cpp)
    add_test(NAME fuzz/${_name}
        COMMAND ${_target} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${_name})
    set_tests_properties(fuzz/${_name} PROPERTIES LABELS fuzz)
endfunction()
