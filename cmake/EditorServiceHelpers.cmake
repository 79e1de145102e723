# Helpers shared by every folder: one library per folder, one test executable per test folder.

add_library(editorservice_warnings INTERFACE)
add_library(EditorService::Warnings ALIAS editorservice_warnings)
target_compile_options(editorservice_warnings INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wnon-virtual-dtor -Woverloaded-virtual>)

# editorservice_add_library(<target> ALIAS <Namespace::Name> [INTERFACE]
#                           [SOURCES ...] [PUBLIC ...] [PRIVATE ...] [INCLUDE_ROOT <dir>])
# Headers are included relative to the repository root ("service/api/Request.h"), or to
# INCLUDE_ROOT where a library must keep an upstream include path ("rxcpp/rx.hpp").
function(editorservice_add_library target)
    cmake_parse_arguments(ARG "INTERFACE" "ALIAS;INCLUDE_ROOT" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    if(NOT ARG_INCLUDE_ROOT)
        set(ARG_INCLUDE_ROOT "${PROJECT_SOURCE_DIR}")
    endif()
    if(ARG_INTERFACE)
        add_library(${target} INTERFACE)
        target_include_directories(${target} INTERFACE
            $<BUILD_INTERFACE:${ARG_INCLUDE_ROOT}>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/reelsmith>)
        target_link_libraries(${target} INTERFACE ${ARG_PUBLIC})
    else()
        add_library(${target} ${ARG_SOURCES})
        target_include_directories(${target} PUBLIC
            $<BUILD_INTERFACE:${ARG_INCLUDE_ROOT}>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/reelsmith>)
        target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE}
            $<BUILD_INTERFACE:EditorService::Warnings>)
        set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    endif()
    if(ARG_ALIAS)
        add_library(${ARG_ALIAS} ALIAS ${target})
        string(REGEX REPLACE "^.*::" "" exportName "${ARG_ALIAS}")
        set_target_properties(${target} PROPERTIES EXPORT_NAME ${exportName})
    endif()
    set_property(GLOBAL APPEND PROPERTY EDITORSERVICE_INSTALLED_TARGETS ${target})
endfunction()

# editorservice_add_gtest(<executable> SOURCES ... [LIBS ...] [LABELS ...])
# Each test case is its own CTest test, run in a fresh process with a QCoreApplication.
function(editorservice_add_gtest target)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE EditorService::TestSupport ${ARG_LIBS} EditorService::Warnings)
    # Every test file parses the same large headers; parse them once per executable.
    target_precompile_headers(${target} PRIVATE
        <gmock/gmock.h> <gtest/gtest.h> <QString> <QStringList> <nlohmann/json.hpp>)
    gtest_discover_tests(${target}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 300)
    # The discovered tests' properties travel as one flat list, which keeps only the first of
    # several labels (escaping the separators does not survive it): a script of our own, which
    # CTest reads after the discovered tests, gives every test all of its binary's labels.
    set(labelScript "${CMAKE_CURRENT_BINARY_DIR}/${target}_labels.cmake")
    file(WRITE "${labelScript}"
        "foreach(discovered IN LISTS ${target}_TESTS)\n"
        "    set_tests_properties(\"\${discovered}\" PROPERTIES LABELS \"${ARG_LABELS}\")\n"
        "endforeach()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${labelScript}")
    editorservice_list_test_binary(${target})
    # The ThreadSanitizer run builds only what it runs.
    if("concurrency" IN_LIST ARG_LABELS)
        if(NOT TARGET concurrency_tests)
            add_custom_target(concurrency_tests)
        endif()
        add_dependencies(concurrency_tests ${target})
    endif()
endfunction()

# CTest runs each test case in a process of its own, which hides tests that lean on what an
# earlier test left in the process. The list lets scripts/test also run each binary whole.
function(editorservice_list_test_binary target)
    set_property(GLOBAL APPEND PROPERTY EDITORSERVICE_TEST_BINARIES ${target})
endfunction()

# Writes <build>/test-binaries.txt: the path of every listed test binary, one a line.
function(editorservice_write_test_binary_list)
    get_property(targets GLOBAL PROPERTY EDITORSERVICE_TEST_BINARIES)
    set(content "")
    foreach(target IN LISTS targets)
        string(APPEND content "$<TARGET_FILE:${target}>\n")
    endforeach()
    file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/test-binaries.txt CONTENT "${content}")
endfunction()

function(editorservice_install_package)
    get_property(targets GLOBAL PROPERTY EDITORSERVICE_INSTALLED_TARGETS)
    install(TARGETS ${targets} editorservice_warnings EXPORT EditorServiceTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY service media platform DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/reelsmith
        FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp" PATTERN "rxcpp" EXCLUDE)
    install(DIRECTORY platform/rx/rxcpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/reelsmith
        OPTIONAL FILES_MATCHING PATTERN "*.hpp")
    install(EXPORT EditorServiceTargets NAMESPACE EditorService::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/EditorService)
    configure_package_config_file(cmake/EditorServiceConfig.cmake.in
        ${PROJECT_BINARY_DIR}/EditorServiceConfig.cmake
        INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/EditorService)
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/EditorServiceConfigVersion.cmake
        COMPATIBILITY SameMinorVersion)
    install(FILES ${PROJECT_BINARY_DIR}/EditorServiceConfig.cmake
        ${PROJECT_BINARY_DIR}/EditorServiceConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/EditorService)
endfunction()
