# The toolchain's own DLLs travel with every program, stripped, so that heap, exceptions and RTTI are shared by all modules.
set(runtime_dlls "")
set(toolchain_dlls libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
if(CMAKE_BUILD_TYPE STREQUAL Checked)
    list(APPEND toolchain_dlls libssp-0.dll)  # the stack guard
endif()
foreach(dll ${toolchain_dlls})
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll} OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS ${path})
        set(path /usr/x86_64-w64-mingw32/lib/${dll})
    endif()
    set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll})
    if(NOT EXISTS ${copy} OR ${path} IS_NEWER_THAN ${copy})
        file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
        # Without the time of day in the header.
        execute_process(COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_STRIP} -o ${copy} ${path}
            COMMAND_ERROR_IS_FATAL ANY)
    endif()
    list(APPEND runtime_dlls ${copy})
endforeach()
