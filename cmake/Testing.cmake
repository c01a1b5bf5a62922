# GoogleTest from Debian's sources, built with the same compiler as the tests, and the three ways to declare a program.
set(googletest_root /usr/src/googletest)
if(NOT EXISTS ${googletest_root}/CMakeLists.txt)
    message(FATAL_ERROR "GoogleTest's sources are missing: install Debian's package googletest")
endif()
set(INSTALL_GTEST OFF)
set(BUILD_GMOCK OFF)
set(gtest_disable_pthreads OFF)
add_subdirectory(${googletest_root} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# The main of every test program.
add_library(test_main OBJECT ${PROJECT_SOURCE_DIR}/tests/support/TestMain.cpp)
target_include_directories(test_main PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(test_main PRIVATE GTest::gtest project_options)

# decisions_test(AREA SOURCE...): tests of pure code, run natively (ASan, UBSan) and under Wine.
function(decisions_test area)
    add_executable(${area}_decisions_test ${ARGN} $<TARGET_OBJECTS:test_main>)
    target_link_libraries(${area}_decisions_test PRIVATE decisions GTest::gtest project_options)
    target_include_directories(${area}_decisions_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    if(WIN32)
        target_link_options(${area}_decisions_test PRIVATE -municode)
    endif()
    add_test(NAME ${area}_decisions COMMAND ${area}_decisions_test)
    set_tests_properties(${area}_decisions PROPERTIES TIMEOUT 300)
endfunction()

# windows_test(AREA SOURCES ... LIBRARIES ...): tests that call Windows, run under Wine only.
function(windows_test area)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
    windows_program(${area}_test SOURCES ${arg_SOURCES} $<TARGET_OBJECTS:test_main>
        LIBRARIES test_support GTest::gtest ${arg_LIBRARIES})
    add_test(NAME ${area} COMMAND ${area}_test)
    set_tests_properties(${area} PROPERTIES TIMEOUT 300)
endfunction()

# windows_program(NAME SOURCES ... LIBRARIES ...): any other program for Windows: a bench, a peer, a host.
function(windows_program name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES} ${PROJECT_SOURCE_DIR}/src/resources/app.rc)
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} project_options)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_options(${name} PRIVATE -municode)
endfunction()
