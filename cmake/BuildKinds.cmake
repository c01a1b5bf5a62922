# Compiler flags of the build kinds, as interface targets: `project_options` for our own code.
add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_compile_options(project_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow
    -Wnon-virtual-dtor -Wimplicit-fallthrough>)
target_include_directories(project_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

if(WIN32)
    target_compile_definitions(project_options INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT
        _WIN32_WINNT=0x0A00 WINVER=0x0A00)
    target_compile_options(project_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wsuggest-override -Wlogical-op
        -Wduplicated-branches>)
    # Checked: undefined behaviour traps (there is no sanitizer runtime for this target), the library asserts, the stack
    # is guarded. DWARF 4 because winedbg cannot read 5.
    set(checks -fsanitize=undefined -fsanitize-undefined-trap-on-error -fstack-protector-strong)
    set(CMAKE_CXX_FLAGS_CHECKED "-O1 -g1 -gdwarf-4 -D_GLIBCXX_ASSERTIONS")
    set(CMAKE_C_FLAGS_CHECKED "-O1 -g1 -gdwarf-4")
    # Release: with line numbers, which the release keeps in files of their own.
    set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG -g1 -gdwarf-4")
    set(CMAKE_EXE_LINKER_FLAGS_CHECKED "")
    set(CMAKE_SHARED_LINKER_FLAGS_CHECKED "")
    target_compile_options(project_options INTERFACE $<$<AND:$<CONFIG:Checked>,$<COMPILE_LANGUAGE:CXX>>:${checks}>)
    target_link_options(project_options INTERFACE $<$<CONFIG:Checked>:-fstack-protector-strong>)
    # What Windows defends a process by: scripts/check-hardening reads it out of the modules again.
    target_link_options(project_options INTERFACE -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
    # The same sources give the same bytes, wherever and whenever they are built: see scripts/check-reproducible.
    target_link_options(project_options INTERFACE -Wl,--no-insert-timestamp)
    target_compile_options(project_options INTERFACE
        $<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:C,CXX>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
else()
    target_compile_options(project_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=address,undefined)
endif()
