# `cmake --install` puts a package in place that another project finds by find_package(RegistryRules) or by pkg-config: the
# DLLs with those of the toolchain, the import libraries, the toolkit, the headers, and RulesHost.exe with its sample.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_cmake ${CMAKE_INSTALL_LIBDIR}/cmake/RegistryRules)
set(package_share ${CMAKE_INSTALL_DATADIR}/RegistryRules)

if(CMAKE_BUILD_TYPE STREQUAL Checked)
    # The guarded stack of the checked objects, for programs that are not themselves built with it.
    target_link_libraries(toolkit INTERFACE $<INSTALL_INTERFACE:ssp>)
endif()
install(TARGETS RegistryRules RulesC RegistryRulesFramework ZmUiCtrl ZmCoreSv toolkit decisions
    EXPORT RegistryRulesTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS RulesHost RulesProbe RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/RulesC.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES host/sample-rules.json DESTINATION ${package_share})
install(FILES LICENSE THIRD-PARTY-NOTICES.md CHANGELOG.md SECURITY.md DESTINATION ${package_share})
install(DIRECTORY docs examples DESTINATION ${package_share})

set(package_headers ${CMAKE_BINARY_DIR}/package-headers)
install(CODE "set(SOURCE \"${PROJECT_SOURCE_DIR}/src\")\nset(TARGET \"${package_headers}\")")
install(SCRIPT cmake/PackageHeaders.cmake)
install(DIRECTORY ${package_headers}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# All that is installed, without tests and benches.
add_custom_target(shipped DEPENDS RegistryRules RulesC RulesC_lib RegistryRulesFramework ZmUiCtrl ZmCoreSv toolkit decisions
    RulesHost RulesProbe)

# The package of CMake. A component is a name for what find_package can be asked for, and for the DLLs that it takes.
install(EXPORT RegistryRulesTargets NAMESPACE RegistryRules:: DESTINATION ${package_cmake})
configure_package_config_file(cmake/RegistryRulesConfig.cmake.in ${CMAKE_BINARY_DIR}/RegistryRulesConfig.cmake
    INSTALL_DESTINATION ${package_cmake} PATH_VARS CMAKE_INSTALL_BINDIR CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/RegistryRulesConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/RegistryRulesConfig.cmake ${CMAKE_BINARY_DIR}/RegistryRulesConfigVersion.cmake
    DESTINATION ${package_cmake})

# What a linker is told that links `target` from the package.
function(link_words target result)
    set(words -l${target})
    get_target_property(links ${target} INTERFACE_LINK_LIBRARIES)
    foreach(link ${links})
        if(TARGET ${link})
            link_words(${link} more)
            list(APPEND words ${more})
        elseif(link MATCHES "^([a-z0-9]+)$|^\\$<INSTALL_INTERFACE:(.+)>$")
            list(APPEND words -l${CMAKE_MATCH_1}${CMAKE_MATCH_2})
        endif()
    endforeach()
    list(REMOVE_DUPLICATES words)
    set(${result} ${words} PARENT_SCOPE)
endfunction()

# pkg_config(COMPONENT TARGET DESCRIPTION OPTION...): lib/pkgconfig/registry-rules-COMPONENT.pc, which finds the package
# wherever it lies.
function(pkg_config component target description)
    link_words(${target} libs)
    list(JOIN libs " " libs)
    list(JOIN ARGN " " options)
    configure_file(cmake/registry-rules.pc.in ${CMAKE_BINARY_DIR}/registry-rules-${component}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/registry-rules-${component}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
set(cxx_options -I\${includedir}/registry-rules/framework -DUNICODE -D_UNICODE)
pkg_config(dialog RegistryRules "The rule editor: CRegistryRulesCtrl" ${cxx_options})
pkg_config(toolkit toolkit "The core toolkit, a static library" ${cxx_options})
pkg_config(c RulesC "The rule editor for C and other languages")
